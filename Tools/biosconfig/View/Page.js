"use strict";
// What a script adds to the page, which is complete without it: finding, filtering, the tree's keys, taking away.
(() => {
  const byId = (id) => document.getElementById("view:" + id);
  const data = JSON.parse(byId("data").textContent);
  const options = data.options;
  const isComparison = data.columns.length > 1;
  const tools = byId("tools");
  const inputs = tools.elements;
  const rows = [...document.querySelectorAll("main tbody > tr")];
  const sections = [...document.querySelectorAll("main > section")];
  /** A setup page with many options has several tables, each a part that is laid out when it comes into view. */
  const parts = [...document.querySelectorAll(".part")];
  const rowsOf = (part) => [...part.firstElementChild.tBodies[0].rows];
  const partOfRow = parts.flatMap((part, place) => rowsOf(part).map(() => place));

  /** A text that stands in an option's row alone: "span" is its prompt, "p" its help. */
  const textOf = (index, element) => rows[index].cells[0].querySelector(`:scope > ${element}:not(.condition)`)?.textContent ?? "";

  // State: what is to be shown, and how it stands in the address.

  const FLAGS = ["changed", "odd"];
  const noWish = () => ({ q: "", page: null, kind: "", on: "", changed: false, odd: false, differs: isComparison });
  let state = noWish();

  /** "q=boot&changed": q always comes first, so that no state looks like the address of an option. */
  function addressOf(wish) {
    const parts = ["q=" + encodeURIComponent(wish.q)];
    if (wish.page !== null) parts.push("page=" + encodeURIComponent(wish.page));
    if (wish.kind) parts.push("kind=" + encodeURIComponent(wish.kind));
    if (wish.on) parts.push("on=" + encodeURIComponent(wish.on));
    for (const flag of FLAGS) if (wish[flag]) parts.push(flag);
    if (isComparison && !wish.differs) parts.push("all");
    return parts.length === 1 && !wish.q ? "#" : "#" + parts.join("&");
  }

  function decoded(text) {
    try {
      return decodeURIComponent(text);
    } catch {
      return text;
    }
  }

  function wishOf(address) {
    const wish = noWish();
    const takes = { q: () => true, page: () => true, kind: (kind) => data.kinds.includes(kind), on: (title) => data.columns.includes(title) };
    for (const part of address.split("&")) {
      const equals = part.indexOf("=");
      const name = equals < 0 ? part : part.slice(0, equals);
      const value = equals < 0 ? "" : decoded(part.slice(equals + 1).replaceAll("+", " "));
      if (FLAGS.includes(name)) wish[name] = true;
      else if (name === "differs") wish.differs = isComparison;
      else if (name === "all") wish.differs = false;
      else if (Object.hasOwn(takes, name) && takes[name](value)) wish[name] = value;
    }
    return wish;
  }

  /** The row that an address leads to, as it stands or with other spellings of its letters. */
  function rowOf(address) {
    if (/[=&]/.test(address)) return null; // a state
    const anchor = encodeURIComponent(decoded(address)).replace(/[!'()*]/g, (c) => "%" + c.charCodeAt(0).toString(16).toUpperCase());
    const small = decoded(address).toLowerCase();
    const row = address && (document.getElementById(address) ?? document.getElementById(anchor) ??
      rows.find((one, index) => one.id && options[index].name.toLowerCase() === small));
    return row && row.matches("main tbody > tr") ? row : null;
  }

  // Finding.

  /** `text` in small letters, each at its place. */
  function folded(text) {
    const small = text.toLowerCase();
    if (small.length === text.length) return small;
    return [...text].map((c) => (c.toLowerCase().length === c.length ? c.toLowerCase() : c)).join("");
  }

  const haystacks = [];
  function haystackOf(index) {
    if (haystacks[index] === undefined) {
      const o = options[index];
      const others = (o.others ?? []).map((other) => other[0] ?? "");
      haystacks[index] = folded(
        [o.name, textOf(index, "span"), textOf(index, "p"), data.pages[o.page], o.value, ...others, ...(data.choiceLists[o.choices] ?? [])]
          .join("\n"));
    }
    return haystacks[index];
  }

  const wordsOf = (text) => folded(text).split(/\s+/).filter(Boolean);
  const isOnPage = (page, wanted) => page === wanted || page.startsWith(wanted + "/");

  /** Which options fit the wish, but for its setup page. */
  function fitting(wish) {
    const words = wordsOf(wish.q);
    const kind = wish.kind ? data.kinds.indexOf(wish.kind) : -1;
    const on = data.columns.indexOf(wish.on);
    return options.map((o, index) =>
      (!wish.changed || o.changed === true) && (!wish.odd || o.odd === true) && (!wish.differs || o.differs === true) &&
      (!wish.kind || o.kind === kind) &&
      (!wish.on || (o.others ?? []).some(([, columns, differs]) => differs && columns.includes(on))) &&
      (words.length === 0 || words.every((word) => haystackOf(index).includes(word))));
  }

  let shown = rows.map(() => true);
  const isShownPage = () => data.pages.map((page) => state.page === null || isOnPage(page, state.page));

  function show(fits) {
    const pageShown = isShownPage();
    const counts = data.pages.map(() => 0);
    const countsOfAll = data.pages.map(() => 0);
    const countsOfParts = parts.map(() => 0);
    let count = 0;
    fits.forEach((fit, index) => {
      const page = options[index].page;
      countsOfAll[page] += fit ? 1 : 0;
      const isShown = fit && pageShown[page];
      counts[page] += isShown ? 1 : 0;
      countsOfParts[partOfRow[index]] += isShown ? 1 : 0;
      count += isShown ? 1 : 0;
      if (shown[index] !== isShown) rows[index].hidden = !isShown;
      shown[index] = isShown;
    });
    sections.forEach((section, place) => {
      section.hidden = counts[place] === 0;
      section.firstElementChild.querySelector(".count").textContent = counts[place];
    });
    parts.forEach((part, place) => (part.hidden = countsOfParts[place] === 0));
    countInTree(countsOfAll);
    byId("count").textContent = `${count} of ${options.length} options`;
    byId("nothing").hidden = count > 0;
  }

  // Marking what was found, in the parts in view. Ranges leave the table as it is, and static ones cost nothing later.

  const found = globalThis.Highlight && CSS.highlights ? new Highlight() : null;
  if (found) CSS.highlights.set("found", found);
  const inView = new Set();
  const marked = new Set();

  /** Opened since what was found stands in them alone. */
  const opened = new Set();
  const MOST_MARKS_OF_A_TEXT = 200;

  /** Whether something was found in a text. */
  function markText(node, words) {
    const text = folded(node.data);
    let marks = 0;
    for (const word of words)
      for (let at = text.indexOf(word); at >= 0 && marks < MOST_MARKS_OF_A_TEXT; at = text.indexOf(word, at + word.length), ++marks)
        found.add(new StaticRange({ startContainer: node, startOffset: at, endContainer: node, endOffset: at + word.length }));
    return marks > 0;
  }

  function markRow(row, words) {
    const walker = document.createTreeWalker(row, NodeFilter.SHOW_TEXT);
    const details = row.querySelector("details");
    let isSeen = false;
    let isInside = false;
    while (walker.nextNode()) {
      if (!markText(walker.currentNode, words)) continue;
      if (details?.contains(walker.currentNode)) isInside = true;
      else isSeen = true;
    }
    if (isInside && !isSeen && !details.open) {
      details.open = true;
      opened.add(details);
    }
  }

  function markInView() {
    const words = wordsOf(state.q);
    if (!found || words.length === 0) return;
    for (const part of inView) {
      if (part.hidden || marked.has(part)) continue;
      marked.add(part);
      const head = part.previousElementSibling;
      if (head?.matches("h2")) markText(head.firstChild, words);
      for (const row of rowsOf(part)) if (!row.hidden) markRow(row, words);
    }
  }

  function mark() {
    found?.clear();
    marked.clear();
    for (const details of opened) details.open = false;
    opened.clear();
    markInView();
  }

  const watcher = new IntersectionObserver(
    (entries) => {
      for (const { target, isIntersecting } of entries) isIntersecting ? inView.add(target) : inView.delete(target);
      markInView();
    },
    { rootMargin: "200px" });

  // The tree.

  const tree = document.querySelector("nav ul");
  const branches = [];

  function makeTree() {
    const all = document.createElement("li");
    all.innerHTML = '<a href="#"> <span class="count"></span></a>';
    all.firstChild.prepend("All pages");
    tree.prepend(all);
    tree.setAttribute("role", "tree");
    tree.setAttribute("aria-label", "Setup pages");
    for (const link of tree.querySelectorAll("a")) {
      const page = link.dataset.page ?? null;
      const group = link.nextElementSibling;
      link.parentElement.setAttribute("role", "none");
      link.setAttribute("role", "treeitem");
      link.tabIndex = -1;
      const toggle = document.createElement("span");
      toggle.className = "toggle";
      link.prepend(toggle);
      link.href = addressOf({ ...noWish(), page });
      if (group) {
        group.setAttribute("role", "group");
        link.setAttribute("aria-expanded", "true");
      }
      branches.push({ link, page, group, count: link.querySelector(".count"), own: data.pages.indexOf(page) });
    }
    branches[0].link.tabIndex = 0;
    tree.addEventListener("click", clickTree);
    tree.addEventListener("keydown", keyInTree);
  }

  function countInTree(counts) {
    const sums = new Map();
    data.pages.forEach((page, place) => {
      sums.set(null, (sums.get(null) ?? 0) + counts[place]);
      for (let end = page.length; end >= 0; end = page.lastIndexOf("/", end - 1)) {
        const above = page.slice(0, end);
        sums.set(above, (sums.get(above) ?? 0) + counts[place]);
        if (end === 0) break;
      }
    });
    for (const { link, page, count } of branches) {
      const sum = sums.get(page) ?? 0;
      count.textContent = sum;
      const isSelected = page === state.page;
      const leadsToSelected = page === null || (state.page !== null && isOnPage(state.page, page));
      link.parentElement.hidden = sum === 0 && !leadsToSelected;
      if (isSelected) focusable(inReach(link));
      link.setAttribute("aria-selected", isSelected);
    }
  }

  function focusable(link) {
    for (const branch of branches) branch.link.tabIndex = branch.link === link ? 0 : -1;
  }

  /** The branch itself, or the closed one that hides it. */
  function inReach(link) {
    const hider = link.parentElement.closest("[aria-expanded='false'] + ul");
    return hider ? inReach(hider.previousElementSibling) : link;
  }

  function open(link, isOpen) {
    if (link.hasAttribute("aria-expanded")) link.setAttribute("aria-expanded", isOpen);
  }

  function clickTree(event) {
    const link = event.target.closest("a");
    if (!link || event.ctrlKey || event.metaKey || event.shiftKey) return;
    event.preventDefault();
    focusable(link);
    if (event.target.classList.contains("toggle") && link.hasAttribute("aria-expanded"))
      open(link, link.getAttribute("aria-expanded") !== "true");
    else
      go({ ...state, page: link.dataset.page ?? null });
  }

  function keyInTree(event) {
    const link = event.target.closest("a");
    if (!link || event.ctrlKey || event.metaKey || event.altKey) return;
    const visible = branches.map((branch) => branch.link).filter((item) => item.offsetParent);
    const at = visible.indexOf(link);
    const isOpen = link.getAttribute("aria-expanded") === "true";
    const moves = {
      ArrowDown: () => visible[at + 1],
      ArrowUp: () => visible[at - 1],
      Home: () => visible[0],
      End: () => visible.at(-1),
      ArrowRight: () => (isOpen ? visible[at + 1] : open(link, true)),
      ArrowLeft: () => (isOpen ? open(link, false) : link.closest("ul").previousElementSibling),
      " ": () => link.click(),
    };
    const move = moves[event.key];
    if (!move) return;
    event.preventDefault();
    const target = move();
    if (target && target.matches("[role=treeitem]")) {
      focusable(target);
      target.focus();
    }
  }

  // Going from state to state.

  function apply() {
    show(fitting(state));
    mark();
  }

  function fillInputs() {
    inputs.q.value = state.q;
    inputs.kind.value = state.kind;
    inputs.on.value = state.on;
    for (const flag of [...FLAGS, "differs"]) inputs[flag].checked = state[flag];
  }

  /** To another state, with an entry in the history. */
  function go(wish) {
    writeAddress.flush();
    state = wish;
    if (addressOf(state) !== location.hash) history.pushState({ wish: state }, "", addressOf(state));
    fillInputs();
    apply();
    byId("options").scrollIntoView({ block: "nearest" });
  }

  /** While somebody types, the address follows when there is a pause. */
  const writeAddress = (() => {
    let timer = 0;
    const flush = () => {
      if (timer === 0) return;
      later.cancel();
      history.replaceState({ wish: state }, "", addressOf(state));
    };
    const later = () => {
      clearTimeout(timer);
      timer = setTimeout(flush, 200);
    };
    later.flush = flush;
    later.cancel = () => {
      clearTimeout(timer);
      timer = 0;
    };
    return later;
  })();

  function showTarget(row) {
    document.querySelector("tr.target")?.classList.remove("target");
    if (!row) return;
    row.classList.add("target");
    const details = row.querySelector("details");
    if (details) details.open = true;
    row.scrollIntoView({ block: "center" });
  }

  function readAddress() {
    writeAddress.cancel();
    const address = location.hash.slice(1);
    const row = rowOf(address);
    if (history.state?.wish) state = { ...noWish(), ...history.state.wish };
    else if (!row) state = wishOf(address);
    else if (row.hidden || !fitting(state)[rows.indexOf(row)]) state = { ...noWish(), differs: false };
    if (!row && /^[^=&:]+$/.test(address) && addressOf(state) === addressOf(noWish()))
      say(`There is no option ${decoded(address)} here.`);
    fillInputs();
    apply();
    showTarget(row);
  }

  /** To an option, with what is shown kept for those who come back. */
  function followLink(event) {
    const link = event.target.closest("tbody th > a");
    if (!link || event.ctrlKey || event.metaKey || event.shiftKey) return;
    event.preventDefault();
    writeAddress.flush();
    history.pushState({ wish: state }, "", link.getAttribute("href"));
    showTarget(link.closest("tr"));
  }

  function changed(event) {
    if (event.target === inputs.q) {
      performance.mark("key");
      state = { ...state, q: inputs.q.value };
      apply();
      writeAddress();
      // When what was asked for has been drawn.
      requestAnimationFrame(() => setTimeout(() => performance.measure("search", "key")));
      return;
    }
    const wish = { ...state, kind: inputs.kind.value, on: inputs.on.value };
    for (const flag of [...FLAGS, "differs"]) wish[flag] = inputs[flag].checked;
    go(wish);
  }

  // Taking away.

  let saying = 0;
  function say(text) {
    byId("said").textContent = text;
    clearTimeout(saying);
    saying = setTimeout(() => (byId("said").textContent = ""), 4000);
  }

  async function copy(text) {
    try {
      await navigator.clipboard.writeText(text);
    } catch {
      const field = document.createElement("textarea");
      field.value = text;
      document.body.append(field);
      field.select();
      const isDone = document.execCommand("copy");
      field.remove();
      if (!isDone) return say("This browser does not let the page copy: " + text);
    }
    say("Copied: " + text);
  }

  /** What a template assigns to an option; null where it cannot. */
  const lineOf = (o) => {
    const value = o.line === undefined ? o.value ?? "" : o.line;
    return value === null || o.value === null ? null : `${o.name}=${value}`;
  };

  function addButtons(row) {
    const details = row.querySelector("details");
    if (!details || details.querySelector(".take")) return;
    const o = options[rows.indexOf(row)];
    const take = document.createElement("div");
    take.className = "take";
    const add = (title, run) => {
      const button = document.createElement("button");
      button.type = "button";
      button.textContent = title;
      button.addEventListener("click", run);
      take.append(button);
    };
    if (lineOf(o) !== null) add("Copy as a line of a template", () => copy(lineOf(o)));
    if (row.id) add("Copy the link", () => copy(location.href.replace(/#.*$/, "") + "#" + row.id));
    details.append(take);
  }

  function download(name, type, text) {
    const link = document.createElement("a");
    link.href = URL.createObjectURL(new Blob([text], { type }));
    link.download = name;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 10000);
  }

  /** In the order of the dump. */
  const placesOfShown = () =>
    options.map((_, index) => index).filter((index) => shown[index]).sort((left, right) => data.places[left] - data.places[right]);
  const cell = (text) => (/[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text);

  /** The texts of an option's values by column. */
  function valuesOf(o) {
    const values = data.columns.map(() => o.value === undefined ? "" : o.value);
    for (const [value, columns] of o.others ?? []) for (const column of columns) values[column] = value;
    return values.map((value) => value ?? "(not there)");
  }

  function csv() {
    const heads = isComparison ? ["Name", ...data.columns, "Prompt", "Page"] : ["Name", "Value", "Prompt", "Page", "Default", "Changed"];
    const lines = placesOfShown().map((index) => {
      const o = options[index];
      const place = [textOf(index, "span"), data.pages[o.page]];
      return isComparison ? [o.name, ...valuesOf(o), ...place] : [o.name, o.value ?? "", ...place, o.default ?? "", o.changed ? "yes" : "no"];
    });
    return [heads, ...lines].map((line) => line.map(cell).join(",") + "\n").join("");
  }

  /** The ";" stands at the start of a line: behind a value it would make the line break a part of the next name. */
  function template() {
    const lines = placesOfShown().map((index) => lineOf(options[index]));
    const written = lines.filter((line) => line !== null);
    if (written.length < lines.length) say(`${lines.length - written.length} options are left out: their values cannot be written`);
    return written.map((line) => line + "\n").join(";");
  }

  // Starting.

  function fillSelects() {
    const kinds = new Set(options.map((o) => data.kinds[o.kind]));
    for (const kind of data.kinds) if (kinds.has(kind)) inputs.kind.add(new Option(kind, kind));
    for (const title of data.columns.slice(1)) inputs.on.add(new Option(title, title));
  }

  function measureBar() {
    const isSticky = getComputedStyle(tools).position === "sticky";
    document.documentElement.style.setProperty("--bar", (isSticky ? tools.offsetHeight : 0) + "px");
  }

  function pressKey(event) {
    const isTyping = event.target.matches?.("input[type=search], select, textarea");
    if (event.key !== "/" || isTyping || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    inputs.q.focus();
    inputs.q.select();
  }

  const showAll = () => go({ ...noWish(), differs: false });

  makeTree();
  fillSelects();
  tools.hidden = false;
  tools.addEventListener("submit", (event) => event.preventDefault());
  tools.addEventListener("input", changed);
  byId("reset").addEventListener("click", showAll);
  byId("reset-too").addEventListener("click", () => {
    showAll();
    inputs.q.focus();
  });
  byId("options").addEventListener("click", followLink);
  byId("csv").addEventListener("click", () => download("bios-options.csv", "text/csv", csv()));
  byId("template").addEventListener("click", () => download("bios-options.txt", "text/plain", template()));
  byId("options").addEventListener("toggle", (event) => event.target.open && addButtons(event.target.closest("tr")), true);
  document.addEventListener("keydown", pressKey);
  addEventListener("popstate", readAddress);
  addEventListener("resize", measureBar);
  if (!CSS.supports("selector(::details-content)"))
    addEventListener("beforeprint", () => document.querySelectorAll("main details").forEach((details) => (details.open = true)));
  if (matchMedia("(max-width: 60rem)").matches) byId("pages").open = false;
  for (const part of parts) watcher.observe(part);
  measureBar();
  readAddress();
  if (!rowOf(location.hash.slice(1))) inputs.q.focus({ preventScroll: true });
})();
