// Sizes and times of large pages: medians of what the page itself has marked.
import { readFileSync, statSync, writeFileSync } from "node:fs";
import { addressOf, biosconfig, launch, PAGES } from "./browser.mjs";

/** Two hundred machines, each with a dozen and more of its choices set to something else. */
function makeMachines() {
  const dump = readFileSync(`${PAGES}/before.xml`, "utf8");
  let seed = 1;
  const random = () => (seed = (seed * 48271) % 2147483647) / 2147483647;
  return Array.from({ length: 200 }, (_, index) => {
    const name = `bench${String(index + 1).padStart(3, "0")}.xml`;
    writeFileSync(`${PAGES}/${name}`, dump.replace(/CurrentVal="0x[01]"/g, (value) => (random() < 0.1 ? value.replace(/[01]"/, (digit) => `${1 - digit[0]}"`) : value)));
    return ["--compare", name];
  }).flat();
}

const pages = { 5000: ["--from", "5000.xml"], 50000: ["--from", "50000.xml"], machines: ["--from", "before.xml", ...makeMachines()] };
const median = (numbers) => numbers.sort((a, b) => a - b)[numbers.length >> 1];
const browser = await launch();
for (const [name, words] of Object.entries(pages)) {
  const start = performance.now();
  biosconfig("view", "--no-time", "-o", `${name}.html`, ...words);
  const made = performance.now() - start;
  const page = await browser.newPage();
  page.setDefaultTimeout(600_000);
  await page.bringToFront();
  await page.goto(addressOf(name));
  await page.waitForFunction(() => performance.getEntriesByName("first-contentful-paint").length > 0);
  const [firstContent, loaded] = await page.evaluate(() => [
    performance.getEntriesByName("first-contentful-paint")[0].startTime, performance.getEntriesByType("navigation")[0].loadEventEnd]);
  // Words typed and taken away again.
  const keys = [..."level", ...Array(5).fill("Backspace"), ..."boot ", ...Array(5).fill("Backspace")];
  for (let pressed = 0; pressed < keys.length; ++pressed) {
    await page.keyboard.press(keys[pressed]);
    await page.waitForFunction((wanted) => performance.getEntriesByName("search").length >= wanted, {}, pressed + 1);
  }
  const times = await page.evaluate(() => performance.getEntriesByName("search").map((entry) => entry.duration));
  console.log(`${name}: ${(statSync(`${PAGES}/${name}.html`).size / 1e6).toFixed(2)} MB, made in ${made.toFixed(0)} ms; first content ${firstContent.toFixed(0)} ms, ` +
    `loaded ${loaded.toFixed(0)} ms; a key ${median(times).toFixed(0)} ms (median of ${times.length}), at most ${Math.max(...times).toFixed(0)} ms`);
  await page.close();
}
await browser.close();
