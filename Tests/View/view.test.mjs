import assert from "node:assert/strict";
import { mkdtempSync, readdirSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { createRequire } from "node:module";
import { after, before, test } from "node:test";
import { setTimeout as pause } from "node:timers/promises";
import { HtmlValidate } from "html-validate";
import { addressOf, biosconfig, launch, PAGES } from "./browser.mjs";

const axe = createRequire(import.meta.url).resolve("axe-core/axe.min.js");
let browser;
before(async () => (browser = await launch()));
after(() => browser.close());

/** Opens a page; whatever it says to the console, and every request but that for itself, is a failure. */
async function open(name, hash = "", { width = 1280, height = 800, dark = false, script = true } = {}) {
  const page = await browser.newPage();
  page.faults = [];
  page.on("console", (message) => page.faults.push("console: " + message.text()));
  page.on("pageerror", (error) => page.faults.push("error: " + error));
  page.on("dialog", (dialog) => page.faults.push("dialog: " + dialog.message()));
  page.on("request", (request) => {
    if (!request.isNavigationRequest() && !request.url().startsWith("blob:")) page.faults.push("request: " + request.url());
  });
  await page.setViewport({ width, height });
  await page.setJavaScriptEnabled(script);
  await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: dark ? "dark" : "light" }]);
  await page.goto(addressOf(name) + hash);
  return page;
}

/** Runs a test on a page of its own. */
function onPage(title, name, run, hash, settings) {
  test(title, async () => {
    const page = await open(name, hash, settings);
    try {
      await run(page);
      assert.deepEqual(page.faults, []);
    } finally {
      await page.close();
    }
  });
}

const names = (page) =>
  page.$$eval("main tbody > tr", (rows) => rows.filter((row) => row.checkVisibility()).map((row) => row.querySelector("th > a, th > b").textContent));
const count = (page) => page.$eval("#view\\:count", (output) => output.textContent);
const hash = (page) => page.evaluate(() => location.hash);
const marked = (page) => page.evaluate(() => [...CSS.highlights.get("found")].map((range) => range.startContainer.data.slice(range.startOffset, range.endOffset)));
const click = (page, selector) => page.$eval(selector, (element) => element.click());
const type = (page, text) => page.type("#view\\:search", text);
const settled = () => pause(350); // longer than the address waits for a pause

onPage("finds what is typed, in every text, and marks it", "single", async (page) => {
  assert.equal(await page.evaluate(() => document.activeElement.id), "view:search");
  assert.equal(await count(page), "277 of 277 options");
  await page.keyboard.type("fast START");
  assert.deepEqual(await names(page), ["MemFastStart", "BootFast"]);
  assert.equal(await count(page), "2 of 277 options");
  await page.waitForFunction(() => CSS.highlights.get("found").size > 1);
  const found = await marked(page);
  assert.ok(found.includes("Fast") && found.includes("Start") && found.every((text) => /^(fast|start)$/i.test(text)), String(found));
  await settled();
  assert.equal(await hash(page), "#q=fast%20START");
  await page.reload();
  assert.deepEqual(await names(page), ["MemFastStart", "BootFast"]);
  for (const [text, wanted] of [["legacy", "BootMode"], ["press of the power button", "BootFast"], ["boot/mode", "BootMode"], ["bootmo", "BootMode"], ["0x5", "CpuEnergyBias"]]) {
    await page.$eval("#view\\:search", (input) => input.select());
    await page.keyboard.type(text);
    assert.ok((await names(page)).includes(wanted), text);
  }
  await page.$eval("#view\\:search", (input) => input.select());
  await page.keyboard.type("then legacy boot/mode"); // in closed details and in the page alone
  await page.waitForFunction(() => document.querySelector("#BootMode details").open);
  const counted = await page.$$eval("section:not([hidden])", (sections) =>
    sections.map((section) => [section.querySelector("h2 .count").textContent, String(section.querySelectorAll("tbody tr:not([hidden])").length)]));
  assert.ok(counted.length > 0 && counted.every(([told, there]) => told === there), String(counted));
  await page.keyboard.type(" nothing of that kind");
  assert.deepEqual(await names(page), []);
  assert.ok(await page.$eval("#view\\:nothing", (line) => line.checkVisibility()));
  await click(page, "#view\\:reset-too");
  assert.equal((await names(page)).length, 277);
});

onPage("filters, each alone and together, and by the address", "after", async (page) => {
  const changed = biosconfig("list", "--changed", "--from", "after.xml", "--csv").trim().split("\n").length - 1;
  await click(page, "[name=changed]");
  assert.equal((await names(page)).length, changed);
  assert.equal(await hash(page), "#q=&changed");
  await page.select("[name=kind]", "choice");
  const both = await names(page);
  assert.ok(both.length < changed && both.includes("BootFast"));
  assert.equal(await hash(page), "#q=&kind=choice&changed");
  await click(page, "[name=changed]");
  const list = JSON.parse(biosconfig("list", "--json", "--from", "after.xml")).options;
  assert.equal((await names(page)).length, list.filter((option) => option.kind === "choice").length);
  await page.goto(addressOf("after") + "#q=boot&changed");
  assert.deepEqual(await names(page), list.filter((o) => o.changed && /boot/i.test(JSON.stringify([o.name, o.prompt, o.help, o.page, o.value.text, o.choices]))).map((o) => o.name));
  await page.goto(addressOf("after") + "#changed");
  assert.equal((await names(page)).length, changed);
  await page.goto(addressOf("naughty") + "#q=&odd");
  assert.deepEqual(await names(page), ["twice", ""]);
  await page.goto(addressOf("naughty") + "#q=&page=%3Cb%3E");
  assert.equal((await names(page)).length, 2, "a page that begins like another one");
  await page.goto(addressOf("naughty") + "#q=&kind=nothing");
  assert.equal((await names(page)).length, 9, "a kind that there is not");
});

onPage("shows pages as a tree with counts that follow the filters", "after", async (page) => {
  const branch = (title) => `nav a[data-page="${title}"]`;
  const counts = async () => Object.fromEntries(await page.$$eval("nav a", (links) =>
    links.filter((link) => link.checkVisibility()).map((link) => [link.dataset.page ?? "", link.querySelector(".count").textContent])));
  const pages = Object.fromEntries(biosconfig("pages", "--from", "after.xml").trim().split("\n").map((line) => line.split(/ {2,}/)).map((cells) => [cells[0], cells[1]]));
  assert.deepEqual(await counts(), { "": "277", ...pages });
  await click(page, branch("Boot"));
  assert.equal((await names(page)).length, Number(pages.Boot));
  assert.equal(await hash(page), "#q=&page=Boot");
  await type(page, "bootfast");
  assert.deepEqual(await counts(), { "": "1", Boot: "1", "Boot/Mode": "1" });
  await click(page, "#view\\:reset");
  await click(page, branch("Boot/Mode"));
  assert.equal(await page.$eval(branch("Boot/Mode"), (link) => link.ariaSelected), "true");
  await click(page, branch("Boot") + " .toggle");
  await type(page, "b");
  const stops = () => page.$$eval("nav a[tabindex='0']", (links) => links.filter((link) => link.checkVisibility()).length);
  assert.equal(await stops(), 1, "the tree is out of reach");
  await click(page, branch("Boot") + " .toggle");
  await click(page, "#view\\:reset");
  await page.focus(branch("Boot"));
  const focused = () => page.evaluate(() => document.activeElement.dataset.page ?? "");
  const walk = [["ArrowRight", "Boot/Mode"], ["ArrowLeft", "Boot"], ["ArrowLeft", "Boot"]];
  for (const [key, wanted] of walk) {
    await page.keyboard.press(key);
    assert.equal(await focused(), wanted, key);
  }
  assert.equal(await page.$eval(branch("Boot/Mode"), (link) => link.checkVisibility()), false);
  assert.equal(await page.$eval(branch("Boot"), (link) => link.getAttribute("aria-expanded")), "false");
  await page.keyboard.press("ArrowDown");
  assert.ok(!(await focused()).startsWith("Boot"));
  await page.keyboard.press("Home");
  assert.equal(await focused(), "");
  await page.keyboard.press("End");
  await page.keyboard.press("Enter");
  assert.equal((await names(page)).length, Number(pages[await focused()]));
});

onPage("has a link for each option, and goes back", "single", async (page) => {
  await type(page, "boot");
  await settled();
  const searched = await names(page);
  await click(page, "#BootFast th > a");
  assert.equal(await hash(page), "#BootFast");
  assert.deepEqual(await names(page), searched);
  assert.ok(await page.$eval("#BootFast details", (details) => details.open));
  await page.reload();
  assert.deepEqual(await names(page), searched);
  await click(page, "#view\\:reset");
  await page.goBack();
  assert.deepEqual(await names(page), searched);
  await page.goBack();
  assert.equal(await hash(page), "#q=boot");
  assert.deepEqual(await names(page), searched);
  assert.equal(await page.$eval("#view\\:search", (input) => input.value), "boot");
  await page.evaluate(() => (location.hash = "setuplanguage"));
  await settled();
  assert.equal((await names(page)).length, 277, "an option that was filtered out comes into view");
  assert.ok(await page.$eval("#SetupLanguage", (row) => row.getBoundingClientRect().top < innerHeight && row.matches(".target")));
});

onPage("compares: the differences first, what was added and removed", "compared", async (page) => {
  assert.equal(await page.$eval("#view\\:summary", (line) => line.textContent), "4 of 278 differ on 1 page · 1 added · 1 removed");
  assert.deepEqual((await names(page)).sort(), ["BootFast", "BootMode", "BootQuietScreen", "OnlyHere"]);
  const cells = (id) => page.$$eval(`#${id} td`, (all) => all.map((cell) => cell.innerText.split("\n")[0].trim()));
  assert.deepEqual(await cells("BootMode"), ["UEFI", "Legacy default UEFI"]);
  assert.equal((await cells("OnlyHere"))[0], "not there");
  assert.equal((await cells("BootQuietScreen"))[1], "not there");
  await type(page, "default uefi legacy"); // what the other machine has, and its default
  assert.deepEqual(await names(page), []);
  await click(page, "#view\\:reset");
  await click(page, "[name=differs]");
  await type(page, "onlyhere 1");
  assert.deepEqual(await names(page), ["OnlyHere"]);
  await click(page, "#view\\:reset");
  assert.equal((await names(page)).length, 278);
  assert.equal(await hash(page), "#q=&all");
});

onPage("names the machines that differ where there are many", "machines", async (page) => {
  const text = await page.$eval("#BootMode td:last-child", (cell) => cell.innerText.replace(/\s+/g, " "));
  assert.equal(text, "Legacy default UEFI bench03, bench05");
  await click(page, ".machines a[href$='bench03']");
  await settled();
  assert.deepEqual((await names(page)).sort(), ["BootFast", "BootMode"]);
  assert.equal(await page.$eval("[name=on]", (select) => select.value), "bench03");
  assert.deepEqual(await page.$$eval(".machines .count", (counts) => counts.map((one) => one.textContent)),
    ["nothing", "nothing", "2", "nothing", "4", "nothing"]);
});

/** What a click downloads. */
async function downloaded(page, selector) {
  const folder = mkdtempSync(join(tmpdir(), "downloads-"));
  try {
    const session = await page.createCDPSession();
    await session.send("Browser.setDownloadBehavior", { behavior: "allow", downloadPath: folder });
    await click(page, selector);
    for (let wait = 0; wait < 100; ++wait) {
      const [file] = readdirSync(folder).filter((name) => !name.endsWith(".crdownload"));
      if (file) return readFileSync(join(folder, file), "utf8");
      await pause(50);
    }
    assert.fail("nothing was downloaded");
  } finally {
    rmSync(folder, { recursive: true });
  }
}

onPage("gives away what the command line gives", "after", async (page) => {
  const from = ["--from", "after.xml"];
  assert.equal(await downloaded(page, "#view\\:csv"), biosconfig("list", "--csv", ...from));
  assert.equal(await downloaded(page, "#view\\:template"), biosconfig("export", ...from));
  await click(page, "[name=changed]");
  assert.equal(await downloaded(page, "#view\\:template"), biosconfig("export", "--changed", ...from));
  await page.goto(addressOf("naughty"));
  assert.equal(await downloaded(page, "#view\\:template"), biosconfig("export", "--from", "naughty.xml"));
  const table = (await downloaded(page, "#view\\:csv")).split("\n").map((line) => line.split(",")[0]);
  assert.deepEqual(table, biosconfig("list", "--csv", "--from", "naughty.xml").split("\n").map((line) => line.split(",")[0]));
  await page.goto(addressOf("redacted") + "#all");
  assert.match(await downloaded(page, "#view\\:csv"), /^SystemOwner,R&D <bring-up>,\(redacted\),/m);
  await page.goto(addressOf("naughty-compared") + "#all");
  assert.match(await downloaded(page, "#view\\:csv"), /^twice,6,\(not there\),First,\ntwice,,,Second,$/m);
  await page.goto(addressOf("compared"));
  assert.match(await downloaded(page, "#view\\:csv"), /^Name,before,other,Prompt,Page\n(.*\n)*BootMode,UEFI,Legacy,Boot Mode,Boot\/Mode\n/);
});

onPage("copies a line of a template, and the link", "single", async (page) => {
  await browser.defaultBrowserContext().overridePermissions("file://", ["clipboard-read", "clipboard-write", "clipboard-sanitized-write"]).catch(() => {});
  await page.evaluate(() => {
    globalThis.copied = [];
    navigator.clipboard.writeText = async (text) => void copied.push(text);
  });
  await click(page, "#BootFast summary");
  await page.waitForSelector("#BootFast .take button");
  await page.$$eval("#BootFast .take button", (buttons) => buttons.forEach((button) => button.click()));
  await page.waitForFunction(() => copied.length === 2);
  assert.deepEqual(await page.evaluate(() => copied), ["BootFast=Disabled", addressOf("single") + "#BootFast"]);
  assert.match(await page.$eval("[role=status]", (line) => line.textContent), /^Copied: /);
});

onPage("is used with the keys alone", "single", async (page) => {
  const focused = () => page.evaluate(() => document.activeElement.id || document.activeElement.name || document.activeElement.textContent.trim());
  await page.keyboard.press("Tab");
  assert.equal(await focused(), "changed");
  await page.keyboard.press("Space");
  const changed = await names(page);
  assert.ok(changed.length > 0 && changed.length < 277);
  await page.keyboard.press("/");
  assert.equal(await focused(), "view:search");
  await page.keyboard.type("/x");
  assert.equal(await page.$eval("#view\\:search", (input) => input.value), "/x");
  await page.keyboard.press("Escape");
  assert.deepEqual(await names(page), changed);
  const stops = [];
  for (let stop = 0; stop < 10; ++stop) {
    await page.keyboard.press("Tab");
    stops.push(await focused());
  }
  for (const stop of ["odd", "kind", "Show all", "Download CSV", "All pages", changed[0]]) 
    assert.ok(stops.some((found) => found.startsWith(stop) || found === "view:reset" && stop === "Show all" || found === "view:csv" && stop === "Download CSV"), `${stop} in ${stops}`);
  await page.focus("nav [tabindex='0']");
  await page.keyboard.press("Tab");
  assert.equal(await focused(), changed[0]);
  await page.keyboard.press("Tab");
  await page.keyboard.press("Enter");
  await page.waitForSelector(".take");
  await page.keyboard.press("Tab");
  assert.equal(await focused(), "Copy as a line of a template");
});

onPage("is complete without a script", "compared", async (page) => {
  assert.equal((await names(page)).length, 278);
  assert.equal(await page.$eval("#view\\:tools", (tools) => tools.checkVisibility()), false);
  await click(page, "nav li:last-child a");
  assert.match(await hash(page), /^#view:page-\d+$/);
  await page.goto(addressOf("naughty") + "#changed");
  assert.equal(await page.$eval(":target", (row) => row.querySelector("span").textContent), "Looks like a filter");
}, "", { script: false });

for (const name of ["single", "four", "machines", "naughty-compared"])
  onPage(`fits a screen 360 pixels wide: ${name}`, name, async (page) => {
    const widest = () => page.evaluate(() => document.documentElement.scrollWidth);
    assert.equal(await widest(), 360);
    await page.$$eval("details", (all) => all.forEach((details) => (details.open = true)));
    assert.equal(await widest(), 360);
    const spilled = await page.$$eval("main td, main th, header *", (all) => all.filter((one) => one.checkVisibility() && one.getBoundingClientRect().right > 361).map((one) => one.textContent));
    assert.deepEqual(spilled.slice(0, 3), []);
  }, "#all", { width: 360, height: 740 });

for (const width of [700, 1280])
  onPage(`breaks no word ${width} pixels wide`, "four", async (page) => {
    await page.$$eval("#BootFast details, #BootMode details", (all) => all.forEach((details) => (details.open = true)));
    await page.waitForSelector(".take");
    const heights = await page.$$eval("#BootFast td b, #BootMode td b, #BootMode dd, .take button", (all) => all.map((one) => [one.textContent, one.getBoundingClientRect().height]));
    assert.deepEqual(heights.filter(([text, height]) => !/ /.test(text.trim()) && height > 30), []);
  }, "", { width });

test("lets nothing in that is not in it", async () => {
  const page = await open("single");
  const tries = await page.evaluate(async () => {
    const result = (work) => work.then(() => "open", () => "closed");
    const load = (element, name, value) => new Promise((done, failed) => {
      element.onload = done;
      element.onerror = failed;
      element[name] = value;
      document.body.append(element);
    });
    const script = document.createElement("script");
    script.textContent = "globalThis.hacked = 1";
    document.body.append(script);
    return [await result(fetch("data:,x")), await result(load(new Image(), "src", "data:image/gif;base64,R0lGODlhAQABAAAAACwAAAAAAQABAAA=")), typeof globalThis.hacked];
  });
  assert.deepEqual(tries, ["closed", "closed", "undefined"]);
  await page.close();
});

onPage("is dark where the system is", "single", async (page) => {
  const channel = await page.evaluate(() => Number(getComputedStyle(document.body).backgroundColor.match(/\d+/)[0]));
  assert.ok(channel < 60, `background ${channel}`);
}, "", { dark: true });

onPage("prints everything but what is for the screen", "single", async (page) => {
  await page.emulateMediaType("print");
  const isSeen = (selector) => page.$eval(selector, (element) => element.checkVisibility({ contentVisibilityAuto: true }) && element.getBoundingClientRect().height > 0);
  for (const selector of ["#view\\:tools", "nav", "h2"]) assert.equal(await isSeen(selector), false, selector);
  for (const selector of ["thead .page", "#BootFast dl"]) assert.equal(await isSeen(selector), true, selector);
  const pdf = await page.pdf({ format: "A4", path: `${PAGES}/single.pdf` });
  assert.ok(pdf.length > 50_000);
});

for (const [name, settings] of [["single", {}], ["single", { dark: true }], ["machines", {}], ["compared", { dark: true }], ["single", { width: 390, height: 844 }]])
  onPage(`has nothing that axe finds: ${name} ${JSON.stringify(settings)}`, name, async (page) => {
    await page.$eval("tbody details", (details) => (details.open = true));
    // The page's policy lets no script in, so this one goes another way.
    await page.evaluate(readFileSync(axe, "utf8"));
    const { violations } = await page.evaluate(() => axe.run({ resultTypes: ["violations"] }));
    assert.deepEqual(violations.map((one) => `${one.id}: ${one.nodes.length} × ${one.nodes[0].html} ${one.nodes[0].failureSummary}`), []);
  }, "", settings);

test("is valid HTML", async () => {
  const validator = new HtmlValidate({ extends: ["html-validate:standard"], rules: { "long-title": "off", "require-sri": "off" } });
  for (const name of ["single", "compared", "machines", "naughty"]) {
    const report = await validator.validateFile(`${PAGES}/${name}.html`);
    assert.deepEqual(report.results.flatMap((result) => result.messages.slice(0, 5).map((one) => `${name}:${one.line}: ${one.ruleId} ${one.message}`)), []);
  }
});

for (const name of ["naughty", "naughty-compared"])
  onPage(`runs nothing of what options say, and loses nothing: ${name}`, name, async (page) => {
    const list = JSON.parse(biosconfig("list", "--json", "--from", "naughty.xml")).options;
    assert.deepEqual((await names(page)).filter((one) => list.some((option) => option.name === one)).sort(), list.map((option) => option.name).sort());
    const text = await page.$eval("main", (main) => main.textContent);
    for (const option of list)
      for (const part of [option.name, option.prompt, option.help, option.page, option.value.text, ...(option.choices ?? []).map((one) => one.text)])
        assert.ok(text.includes(part ?? ""), part);
    await page.$$eval("a[href^='#']", (links) => links.slice(0, 40).forEach((link) => link.click()));
    await click(page, "#view\\:reset");
    await type(page, "İST");
    assert.equal((await names(page)).length, 1);
    await page.$eval("#view\\:search", (input) => input.select());
    await type(page, "🙂");
    await page.waitForFunction(() => CSS.highlights.get("found").size > 0);
    assert.ok((await marked(page)).every((one) => one === "🙂"));
    assert.equal(await page.evaluate(() => globalThis.hacked), undefined);
    for (const [address, prompt] of [["q%3Dboot%26changed", "Looks like a state"], ["changed", "Looks like a filter"], ["view%3Asearch", "Looks like the search box"], ["twice", "First"]]) {
      await page.goto(addressOf(name) + "#" + address);
      assert.equal(await page.$eval("tr.target span", (span) => span.textContent), prompt);
    }
  }, "#all");
