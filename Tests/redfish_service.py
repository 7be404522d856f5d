#!/usr/bin/env python3
"""redfish_service.py [--attributes N] [--fault NAME]: a Redfish service with an invented machine, over TLS on the loopback
interface, for tests. Started as a program it says where it is and runs until it is ended; tests make Service objects.

It checks what it is sent: tokens, entity tags, headers, the form of requests. What is not as it should be is refused and
noted in `violations`. It can misbehave in one way at a time (FAULTS)."""
import argparse
import base64
import copy
import gzip
import http.server
import json
import pathlib
import secrets
import ssl
import subprocess
import tempfile
import threading
import time

USER, PASSWORD = "operator", "Zitrone-47-Kaffee"
ROOT = "/redfish/v1"

FAULTS = {
    "401": "the settings are refused although the session is good",
    "403": "the user may not see the settings",
    "404": "there are no settings",
    "412": "the settings have changed whenever something is programmed",
    "503": "busy once when the settings are read",
    "503-always": "busy whenever the settings are read",
    "503-patch": "busy once when something is programmed",
    "slow": "the settings come after the time is over",
    "half": "the settings' body stops in the middle and the connection is closed",
    "too-long": "Content-Length promises more than the settings have",
    "too-short": "Content-Length promises less than the settings have",
    "not-json": "a web page with 200 in the place of the settings",
    "list": "a JSON list in the place of the settings",
    "no-attributes": "settings without Attributes",
    "error-200": "200 with an error in it in the place of the settings",
    "registry-without-list": "a registry without attributes",
    "registry-empty": "a registry with an empty list of attributes",
    "registry-missing": "no registry of the name that the settings give",
    "registry-not-json": "half a registry, with the right length",
    "registry-without-location": "a registry that is nowhere",
    "registry-gzip": "the registry is compressed, and says so",
    "registry-gzip-broken": "the registry says that it is compressed, and is not",
    "registry-raw-gzip": "the registry is a compressed file that does not say so",
    "huge": "the registry never ends",
    "no-sessions": "sessions are refused, basic authentication is taken",
    "sessions-full": "no session is free, basic authentication is taken",
    "redirect": "the settings are said to be on another host",
    "redirect-here": "the settings are elsewhere on this host",
    "redirect-loop": "the settings are sent on to themselves",
    "link-elsewhere": "the system's link to its settings leads to another host",
    "two-systems": "there are two systems",
    "no-systems": "there is none",
    "no-settings": "the settings cannot be changed",
    "settings-missing": "the place for new settings is named and not there",
    "no-etag": "no entity tags",
    "weak-etag": "weak entity tags",
    "replaces": "new settings replace those that wait",
    "task": "programming is a task that takes a moment",
    "task-fails": "programming is a task that fails",
    "task-waits": "programming is a task that waits for the restart",
    "refused": "programming is refused with a reason per option",
    "echo": "programming is refused, and the reason names what was sent",
    "error-200-patch": "programming is answered with 200 and an error in it, and nothing is taken",
    "by-halves": "the first option is taken and the others are refused, with 200 and a message per option",
    "silent": "programming is answered with 200, and nothing is taken",
    "close-patch": "the connection is closed in the middle of the request, and nothing is taken",
    "close-taken": "the request is taken and the connection closed without an answer",
    "patch-500": "programming fails",
    "slow-patch": "programming takes a while",
    "reset-refused": "the default settings are refused",
}


def make_certificate(folder):
    """A key and a certificate for the loopback interface, signed by itself: the file with both."""
    place = pathlib.Path(folder) / "service.pem"
    key, certificate = place.with_suffix(".key"), place.with_suffix(".crt")
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                    "-keyout", key, "-out", certificate, "-days", "2", "-subj", "/CN=localhost",
                    "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1"], check=True, capture_output=True)
    place.write_bytes(key.read_bytes() + certificate.read_bytes())
    return place


def registry_attribute(name, kind, page, default, **more):
    return {"AttributeName": name, "Type": kind, "DisplayName": more.pop("title", name), "HelpText": more.pop("help", ""),
            "MenuPath": page, "DisplayOrder": 1, "ReadOnly": False, "Hidden": False, "GrayOut": False, "Immutable": False,
            "CurrentValue": None, "DefaultValue": default, "ResetRequired": True, **more}


def choices(*texts):
    return [{"ValueName": text.replace(" ", ""), "ValueDisplayName": text} for text in texts]


def depends(name, prop, value, *conditions):
    froms = [{"MapFromAttribute": attribute, "MapFromProperty": "CurrentValue", "MapFromCondition": sign, "MapFromValue": wanted,
              **({"MapTerms": "AND"} if number else {})} for number, (attribute, sign, wanted) in enumerate(conditions)]
    return {"DependencyFor": name, "Type": "Map",
            "Dependency": {"MapFrom": froms, "MapToAttribute": name, "MapToProperty": prop, "MapToValue": value}}


class Machine:
    """The settings of an invented machine: a few with names of their own, then as many as are wanted."""

    def __init__(self, count=300):
        boot, power, board = "./Boot", "./Power/Fans & Limits", "./Board"
        self.menus = [{"MenuName": path.rsplit("/", 1)[-1], "MenuPath": path, "DisplayName": title, "DisplayOrder": 1, "Hidden": False}
                      for path, title in ((boot, "Start"), ("./Power", "Power"), (power, "Fans & Limits"))]
        self.attributes = [
            registry_attribute("StartMode", "Enumeration", boot, "Native", title="Start mode", Value=choices("Compatible", "Native", "Both Ways"),
                               help="How a system is started.\nBoth ways costs \"a moment\" <more> & needs both loaders."),
            registry_attribute("SignedStart", "Boolean", boot, False, title="Start signed systems only"),
            registry_attribute("FanFloor", "Integer", power, 20, title="Lowest fan duty", LowerBound=20, UpperBound=100, ScalarIncrement=5,
                               help="In percent."),
            registry_attribute("ThermalOffset", "Integer", power, 0, LowerBound=-40, UpperBound=40, title="Thermal offset"),
            registry_attribute("AssetLabel", "String", board, "", title="Asset label", MinLength=0, MaxLength=24),
            registry_attribute("SetupWord", "Password", board, None, title="Setup password", MinLength=6, MaxLength=20),
            registry_attribute("BoardSerial", "String", board, "", title="Serial number", ReadOnly=True),
            registry_attribute("QuietFans", "Enumeration", power, "Off", title="Quiet fans", Value=choices("Off", "On")),
            registry_attribute("HiddenTrim", "Integer", power, 3, title="Trim", LowerBound=0, UpperBound=7),
            registry_attribute("AbsentRiser", "Enumeration", board, "Auto", title="Riser that is not there", Value=choices("Auto", "Off")),
        ]
        self.current = {"StartMode": "Native", "SignedStart": False, "FanFloor": 35, "ThermalOffset": -5, "AssetLabel": "Bay 7 / \"Ü\" <x>",
                        "SetupWord": None, "BoardSerial": "QX-0031-77", "QuietFans": "Off", "HiddenTrim": 3, "LooseFlag": True}
        self.dependencies = [depends("SignedStart", "ReadOnly", True, ("StartMode", "NEQ", "Native")),
                             depends("HiddenTrim", "Hidden", True, ("QuietFans", "EQU", "Off"), ("FanFloor", "GEQ", 30))]
        for number in range(len(self.attributes), count):
            page = f"./Group{number % 24}/Unit{number % 5}"
            name = f"Unit{number:04}"
            text = f"Setting {number} of the invented machine. It bears on lane {number % 16} and has no effect elsewhere, " * 3
            if number % 4 == 0:
                self.attributes.append(registry_attribute(name + "Level", "Integer", page, 1, LowerBound=0, UpperBound=255, title=f"Level {number}", help=text))
                self.current[name + "Level"] = number % 256
            elif number % 4 == 1:
                self.attributes.append(registry_attribute(name + "On", "Boolean", page, True, title=f"Switch {number}", help=text))
                self.current[name + "On"] = number % 8 == 1
            else:
                words = [f"Way {chr(65 + choice)}" for choice in range(2 + number % 6)]
                self.attributes.append(registry_attribute(name + "Way", "Enumeration", page, "WayA", title=f"Way {number}", help=text, Value=choices(*words)))
                self.current[name + "Way"] = words[number % len(words)].replace(" ", "")
            if number % 10 == 0:
                self.dependencies.append(depends(self.attributes[-1]["AttributeName"], "GrayOut", True, ("StartMode", "EQU", "Compatible")))
        self.pending = {}
        self.messages = []

    def registry(self, language="en"):
        attributes = copy.deepcopy(self.attributes)
        if language == "de":
            attributes[0]["DisplayName"] = "Startart"
        return {"@odata.type": "#AttributeRegistry.v1_3_6.AttributeRegistry", "Id": "UnitRegistry.v2_1_0", "Language": language, "Name": "Settings",
                "OwningEntity": "Invented", "RegistryVersion": "2.1.0",
                "RegistryEntries": {"Attributes": attributes, "Menus": self.menus, "Dependencies": self.dependencies}}

    def problem(self, name, value):
        """The name of the message that says why the machine does not take the value; empty where it does."""
        if name not in self.current:
            return "PropertyUnknown"
        known = next((attribute for attribute in self.attributes if attribute["AttributeName"] == name), None)
        if known is None:
            return "" if type(value) is type(self.current[name]) else "PropertyValueTypeError"
        if known["ReadOnly"]:
            return "PropertyNotWritable"
        wanted = {"Integer": int, "Boolean": bool}.get(known["Type"], str)
        if type(value) is not wanted:
            return "PropertyValueTypeError"
        if known["Type"] == "Enumeration" and value not in [choice["ValueName"] for choice in known["Value"]]:
            return "PropertyValueNotInList"
        if known["Type"] == "Integer" and not known["LowerBound"] <= value <= known["UpperBound"]:
            return "PropertyValueOutOfRange"
        return ""

    def restart(self):
        self.current.update(self.pending)
        self.pending, self.messages = {}, []


def message(name, text, *properties, severity="Critical", resolution="None."):
    return {"MessageId": f"Base.1.13.{name}", "Message": text, "MessageSeverity": severity, "Resolution": resolution,
            "RelatedProperties": [f"#/Attributes/{name}" for name in properties]}


class Service:
    """The service, running in threads of its own until it is closed."""

    def __init__(self, machine=None, fault="", certificate=None, elsewhere=""):
        self.machine = machine or Machine()
        self.fault = fault
        self.elsewhere = elsewhere
        self.sessions, self.requests, self.violations, self.patches, self.tokens = {}, [], [], [], []
        self.is_slow = False
        self.resets = self.version = self.asked = self.polls = self.made = 0
        self.lock = threading.RLock()
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), type("Handler", (Handler,), {"service": self}))
        self.server.daemon_threads = True
        self.server.handle_error = lambda *_: None
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate)
        # The handshake is made by the connection's own thread.
        self.server.socket = context.wrap_socket(self.server.socket, server_side=True, do_handshake_on_connect=False)
        self.url = f"https://127.0.0.1:{self.server.server_port}"
        self.ready = {}
        threading.Thread(target=self.server.serve_forever, kwargs={"poll_interval": 0.02}, daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.server.shutdown()
        self.server.server_close()

    def etag(self):
        if self.fault == "no-etag":
            return None
        return ("W/" if self.fault == "weak-etag" else "") + f'"state-{self.version}"'


def odata(path, kind, **members):
    return {"@odata.id": path, "@odata.type": f"#{kind}", "Id": path.rsplit("/", 1)[-1], "Name": kind, **members}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    service = None
    timeout = 60

    def log_message(self, *_):
        pass

    # Requests

    def do_GET(self):
        self.take("GET")

    def do_POST(self):
        self.take("POST")

    def do_PATCH(self):
        self.take("PATCH")

    def do_DELETE(self):
        self.take("DELETE")

    def take(self, method):
        service = self.service
        length = int(self.headers.get("Content-Length") or 0)
        if method == "PATCH" and service.fault == "close-patch":
            self.rfile.read(min(8, length))
            service.requests.append((method, self.path))
            service.fault = "closed"
            return self.drop()
        body = self.rfile.read(length)
        with service.lock:
            service.requests.append((method, self.path))
        self.check_form(method, body)
        if self.path not in (ROOT, ROOT + "/") and (method, self.path) != ("POST", ROOT + "/SessionService/Sessions") and not self.is_known():
            return self.refuse(401, "NoValidSession", "There is no valid session.")
        try:
            getattr(self, method.lower())(self.path.rstrip("/"), body)
        except (BrokenPipeError, ConnectionResetError, ssl.SSLError):
            self.close_connection = True

    def violation(self, text):
        self.service.violations.append(f"{self.command} {self.path}: {text}")

    def check_form(self, method, body):
        headers = self.headers
        if headers.get("OData-Version", "4.0") != "4.0" or "json" not in headers.get("Accept", "json"):
            self.violation("no JSON is asked for")
        if "X-Auth-Token" in headers and "Authorization" in headers:
            self.violation("token and basic authentication at once")
        if self.path.rstrip("/") == ROOT and ("X-Auth-Token" in headers or "Authorization" in headers) and not self.service.made:
            self.violation("nobody has asked for user and password")
        if PASSWORD in self.path or PASSWORD in str(headers):
            self.violation("the password is where it does not belong")
        if "Expect" in headers:
            self.violation("Expect")
        if body and not headers.get("Content-Type", "").startswith("application/json"):
            self.violation("the body is not said to be JSON")
        if body:
            try:
                json.loads(body)
            except ValueError:
                self.violation("the body is no JSON")

    def is_known(self):
        token = self.headers.get("X-Auth-Token")
        if token is not None:
            return token in self.service.sessions.values()
        basic = base64.b64encode(f"{USER}:{PASSWORD}".encode()).decode()
        return self.service.fault in ("no-sessions", "sessions-full") and self.headers.get("Authorization") == f"Basic {basic}"

    # Answers

    def drop(self):
        self.close_connection = True
        self.connection.close()

    def send(self, document, status=200, etag=None, **headers):
        body = document if isinstance(document, bytes) else json.dumps(document, ensure_ascii=False).encode()
        self.send_response(status)
        self.send_header("Content-Type", "application/json; charset=utf-8")
        self.send_header("OData-Version", "4.0")
        self.send_header("Content-Length", headers.pop("length", len(body)))
        if etag:
            self.send_header("ETag", etag)
        for name, value in headers.items():
            self.send_header(name.replace("_", "-"), value)
        self.end_headers()
        self.wfile.write(body)

    def empty(self, status=204, **headers):
        self.send_response(status)
        self.send_header("Content-Length", 0)
        for name, value in headers.items():
            self.send_header(name.replace("_", "-"), value)
        self.end_headers()

    def refuse(self, status, name, text, *properties, **headers):
        self.send({"error": {"code": f"Base.1.13.{name}", "message": text, "@Message.ExtendedInfo": [message(name, text, *properties)]}}, status, **headers)

    # Resources

    def get(self, path, _):
        service = self.service
        system = f"{ROOT}/Systems/Node-1"
        if path == ROOT:
            return self.send(odata(ROOT, "ServiceRoot.v1_15_0.ServiceRoot", Vendor="Invented", Product="Invented controller", RedfishVersion="1.17.0",
                                   Systems={"@odata.id": f"{ROOT}/Systems"}, Registries={"@odata.id": f"{ROOT}/Registries"},
                                   SessionService={"@odata.id": f"{ROOT}/SessionService"}, Links={"Sessions": {"@odata.id": f"{ROOT}/SessionService/Sessions"}}))
        if path == f"{ROOT}/Systems":
            names = {"no-systems": [], "two-systems": ["Node-0", "Node-1"]}.get(service.fault, ["Node-1"])
            return self.send(odata(path, "ComputerSystemCollection", Members=[{"@odata.id": f"{path}/{name}"} for name in names]))
        if path == system:
            where = service.elsewhere if service.fault == "link-elsewhere" else ""
            return self.send(odata(path, "ComputerSystem.v1_20_0.ComputerSystem", Model="Invented 2S", Manufacturer="Invented", BiosVersion="QX 4.17",
                                   PowerState="On", Bios={"@odata.id": f"{where}{path}/Bios"}))
        if path == f"{system}/Bios":
            return self.get_bios(path)
        if path == f"{system}/Bios/Here":
            return self.send(self.bios(f"{system}/Bios"), etag='"current"')
        if path == f"{system}/Bios/Settings" and service.fault != "settings-missing":
            return self.send(odata(path, "Bios.v1_2_1.Bios", AttributeRegistry="UnitRegistry.v2_1_0", Attributes=service.machine.pending), etag=service.etag())
        if path == f"{ROOT}/Registries":
            names = ["Base", "TaskEvent"] + (["UnitRegistry"] if service.fault != "registry-missing" else [])
            return self.send(odata(path, "MessageRegistryFileCollection", Members=[{"@odata.id": f"{path}/{name}"} for name in names]))
        if path in (f"{ROOT}/Registries/Base", f"{ROOT}/Registries/TaskEvent"):
            return self.send(odata(path, "MessageRegistryFile.v1_1_3.MessageRegistryFile", Registry=path.rsplit("/", 1)[-1] + ".1.13"))
        if path == f"{ROOT}/Registries/UnitRegistry":
            location = [{"Language": language, "Uri": f"/store/{language}/units.json"} for language in ("de", "en")]
            location += [{"Language": "default", "PublicationUri": "https://elsewhere.invalid/units.json"}]
            return self.send(odata(path, "MessageRegistryFile.v1_1_3.MessageRegistryFile", Registry="UnitRegistry.v2_1_0", Languages=["de", "en"],
                                   Location=[] if service.fault == "registry-without-location" else location))
        if path in ("/store/en/units.json", "/store/de/units.json"):
            return self.get_registry(path.split("/")[2])
        if path == f"{ROOT}/TaskService/TaskMonitors/7":
            return self.get_task()
        return self.refuse(404, "ResourceMissingAtURI", "There is no such resource.")

    def bios(self, path):
        service = self.service
        document = odata(path, "Bios.v1_2_1.Bios", AttributeRegistry="UnitRegistry.v2_1_0", Attributes=service.machine.current,
                         Actions={"#Bios.ResetBios": {"target": f"{path}/Actions/Bios.ResetBios"}})
        document["@Redfish.Settings"] = {"@odata.type": "#Settings.v1_3_5.Settings", "SettingsObject": {"@odata.id": f"{path}/Settings"},
                                         "SupportedApplyTimes": ["OnReset"], "Messages": service.machine.messages}
        if service.fault == "no-settings":
            del document["@Redfish.Settings"], document["Actions"]
        if service.fault == "no-attributes":
            del document["Attributes"]
        return document

    def get_bios(self, path):
        service, fault = self.service, self.service.fault
        service.asked += 1
        document = self.bios(path)
        if fault in ("401", "403", "404"):
            names = {"401": "NoValidSession", "403": "InsufficientPrivilege", "404": "ResourceMissingAtURI"}
            return self.refuse(int(fault), names[fault], "This is refused.")
        if fault == "503-always" or (fault == "503" and service.asked == 1):
            return self.refuse(503, "ServiceTemporarilyUnavailable", "The service is busy.", Retry_After="1")
        if fault == "slow":
            service.is_slow = True
            time.sleep(4)
        body = json.dumps(document).encode()
        if fault in ("half", "too-long"):
            self.send(body[:len(body) // 2] if fault == "half" else body, length=len(body) + (fault == "too-long") * 100)
            return self.drop()
        if fault == "too-short":
            self.close_connection = True
            return self.send(body, length=len(body) // 2)
        if fault == "not-json":
            return self.send(b"<html><body>Maintenance</body></html>")
        if fault == "list":
            return self.send([document])
        if fault == "error-200":
            return self.send({"error": {"code": "Base.1.13.InternalError", "message": "The service has failed."}})
        if fault in ("redirect", "redirect-here", "redirect-loop"):
            return self.empty(307, Location={"redirect": f"{service.elsewhere}{path}", "redirect-here": f"{path}/Here", "redirect-loop": path}[fault])
        return self.send(document, etag='"current"')

    def get_registry(self, language):
        service, fault = self.service, self.service.fault
        key = (language, fault)
        if key not in service.ready:
            registry = service.machine.registry(language)
            if fault == "registry-without-list":
                del registry["RegistryEntries"]["Attributes"]
            if fault == "registry-empty":
                registry["RegistryEntries"] = {"Attributes": []}
            body = json.dumps(registry, ensure_ascii=False).encode()
            body = body[:len(body) // 2] if fault == "registry-not-json" else body
            service.ready[key] = gzip.compress(body) if fault in ("registry-gzip", "registry-raw-gzip") else body
        body = service.ready[key]
        if fault in ("registry-gzip", "registry-gzip-broken"):
            return self.send(body, Content_Encoding="gzip")
        if fault == "huge":
            self.send_response(200)
            self.end_headers()
            self.close_connection = True
            for _ in range(4096):
                self.wfile.write(b" " * 65536)
            return None
        return self.send(body)

    def get_task(self):
        service = self.service
        service.polls += 1
        state = {"task-waits": "Pending", "task-fails": "Exception"}.get(service.fault, "Completed")
        if service.polls < 3:
            state = "Running"
        task = odata(self.path, "Task.v1_7_3.Task", TaskState=state, Messages=[message("PropertyValueIncorrect", "No.", "FanFloor")] if state == "Exception" else [])
        return self.send(task, 200 if state in ("Completed", "Exception") else 202)

    def post(self, path, body):
        service, fault = self.service, self.service.fault
        if path == f"{ROOT}/SessionService/Sessions":
            if fault == "no-sessions":
                return self.refuse(405, "OperationNotAllowed", "There are no sessions.")
            if fault == "sessions-full":
                return self.refuse(503, "SessionLimitExceeded", "There is no free session.")
            given = json.loads(body)
            if (given.get("UserName"), given.get("Password")) != (USER, PASSWORD):
                return self.refuse(401, "ResourceAtUriUnauthorized", f"{given.get('UserName')} with {given.get('Password')} is refused.")
            service.made += 1
            number, token = str(service.made), secrets.token_hex(16)
            service.sessions[number] = token
            service.tokens.append(token)
            return self.send(odata(f"{path}/{number}", "Session.v1_6_0.Session", UserName=USER), 201, X_Auth_Token=token, Location=f"{path}/{number}")
        if path.endswith("/Actions/Bios.ResetBios"):
            if fault == "reset-refused":
                return self.refuse(403, "InsufficientPrivilege", "This is refused.")
            service.resets += 1
            defaults = {attribute["AttributeName"]: attribute["DefaultValue"] for attribute in service.machine.attributes if not attribute["ReadOnly"]}
            service.machine.pending = {name: value for name, value in defaults.items() if name in service.machine.current and value is not None}
            return self.empty()
        return self.refuse(404, "ResourceMissingAtURI", "There is no such resource.")

    def delete(self, path, _):
        if self.service.sessions.pop(path.rsplit("/", 1)[-1], None) is None:
            self.violation("there is no such session")
            return self.refuse(404, "ResourceMissingAtURI", "There is no such session.")
        return self.empty()

    def patch(self, path, body):
        service, machine = self.service, self.service.machine
        with service.lock:
            fault = service.fault
            if path != f"{ROOT}/Systems/Node-1/Bios/Settings":
                self.violation("this is no place for new settings")
                return self.refuse(405, "OperationNotAllowed", "This cannot be changed.")
            given = json.loads(body)
            service.patches.append(given)
            if set(given) - {"Attributes", "@Redfish.SettingsApplyTime"}:
                self.violation(f"unknown members {sorted(given)}")
            if given.get("@Redfish.SettingsApplyTime", {}).get("ApplyTime") != "OnReset":
                self.violation("no time of application")
            if self.headers.get("If-Match") != service.etag():
                self.violation(f"If-Match {self.headers.get('If-Match')} and not {service.etag()}")
                return self.refuse(412, "PreconditionFailed", "The settings have changed.")
            if fault == "412":
                service.version += 1
                return self.refuse(412, "PreconditionFailed", "The settings have changed.")
            if fault == "503-patch" and len(service.patches) == 1:
                return self.refuse(503, "ServiceTemporarilyUnavailable", "The service is busy.", Retry_After="1")
            return self.program(given["Attributes"], body, fault)

    def program(self, attributes, body, fault):
        service, machine = self.service, self.service.machine
        if fault == "slow-patch":
            service.is_slow = True
            time.sleep(2)
        if fault == "patch-500":
            return self.refuse(500, "InternalError", "The service has failed.")
        problems = {name: machine.problem(name, value) for name, value in attributes.items()}
        problems = {name: problem for name, problem in problems.items() if problem}
        if fault == "refused":
            problems = {name: "PropertyValueNotInList" for name in attributes}
        if problems:
            return self.send({"error": {"code": "Base.1.13.GeneralError", "message": "See the messages.", "@Message.ExtendedInfo":
                                        [message(problem, "This is refused.", name) for name, problem in problems.items()]}}, 400)
        if fault == "echo":
            text = f"\x1b[31mInvented error: {body.decode()} of {self.headers.get('X-Auth-Token')} by {PASSWORD}"
            return self.send({"error": {"@Message.ExtendedInfo": [{"MessageId": "Invented.1.0.Odd", "Message": text, "Severity": "Critical"}]}}, 400)
        if fault == "error-200-patch":
            return self.send({"error": {"code": "Base.1.13.InternalError", "message": "The service has failed."}})
        if fault == "silent":
            return self.send({"Attributes": attributes})
        if fault == "by-halves" and len(service.patches) == 1:
            first, *others = attributes
            machine.pending[first] = attributes[first]
            service.version += 1
            infos = {f"{name}@Message.ExtendedInfo": [message("PropertyValueConflict", "No.", severity="Warning")] for name in others}
            return self.send({"Attributes": {first: attributes[first], **infos}})
        machine.pending = dict(attributes) if fault == "replaces" else {**machine.pending, **attributes}
        service.version += 1
        if fault == "close-taken":
            service.fault = "closed"
            return self.drop()
        if fault.startswith("task"):
            return self.empty(202, Location=f"{ROOT}/TaskService/TaskMonitors/7")
        return self.send(odata(self.path, "Bios.v1_2_1.Bios", **{"@Message.ExtendedInfo": [message("Success", "Done.", severity="OK")]}), etag=service.etag())


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter,
                                     epilog="Faults:\n" + "\n".join(f"  {name}: {text}" for name, text in FAULTS.items()))
    parser.add_argument("--attributes", type=int, default=300)
    parser.add_argument("--fault", choices=FAULTS, default="")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as place, Service(Machine(arguments.attributes), arguments.fault, make_certificate(place)) as running:
        print(f"url = {running.url}\nca = {place}/service.crt\nuser {USER}, password {PASSWORD}", flush=True)
        threading.Event().wait()
