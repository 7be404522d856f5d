// Sizes and times of large pages: medians of what the page itself has marked.
import { statSync } from "node:fs";
import { addressOf, biosconfig, launch, PAGES } from "./browser.mjs";

const kMachines = Array.from({ length: 200 }, (_, index) => ["--compare", `bench${index + 1}.xml`]).flat();
const pages = { 5000: ["--from", "5000.xml"], 50000: ["--from", "50000.xml"], machines: ["--from", "before.xml", ...kMachines] };
const median = (numbers) => numbers.sort((a, b) => a - b)[numbers.length >> 1];
const browser = await launch();
for (const [name, words] of Object.entries(pages)) {
  const start = performance.now();
  biosconfig("view", "--no-time", "-o", `${name}.html`, ...words);
  const made = performance.now() - start;
  const page = await browser.newPage();
  page.setDefaultTimeout(600_000);
  await page.goto(addressOf(name));
  const [firstContent, loaded] = await page.evaluate(() => [
    performance.getEntriesByName("first-contentful-paint")[0]?.startTime, performance.getEntriesByType("navigation")[0].loadEventEnd]);
  const keys = "option 4 change l 12";
  for (const key of keys) {
    await page.keyboard.type(key);
    await page.waitForFunction((wanted) => performance.getEntriesByName("search").length >= wanted, {}, keys.indexOf(key) + 1).catch(() => {});
    await new Promise((go) => setTimeout(go, 150));
  }
  const times = await page.evaluate(() => performance.getEntriesByName("search").map((entry) => entry.duration));
  console.log(`${name}: ${(statSync(`${PAGES}/${name}.html`).size / 1e6).toFixed(2)} MB, made in ${made.toFixed(0)} ms; first content ${firstContent?.toFixed(0)} ms, ` +
    `loaded ${loaded.toFixed(0)} ms; a key ${median(times).toFixed(0)} ms (median of ${times.length})`);
  await page.close();
}
await browser.close();
