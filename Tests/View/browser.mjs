// Chromium, headless, and pages in it.
import { execFileSync, spawnSync } from "node:child_process";
import puppeteer from "puppeteer-core";

export const { BIN, PAGES } = process.env;

export const launch = () =>
  puppeteer.launch({
    executablePath: execFileSync("sh", ["-c", "command -v chromium || command -v chromium-browser || command -v google-chrome"]).toString().trim(),
    args: ["--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"],
  });

export const addressOf = (name) => `file://${PAGES}/${name}.html`;

/** What biosconfig prints; a part is enough. */
export function biosconfig(...words) {
  const { status, stdout } = spawnSync(`${BIN}/biosconfig`, words, { cwd: PAGES, maxBuffer: 1e9, stdio: ["ignore", "pipe", "ignore"] });
  if (status !== 0 && status !== 5) throw new Error(`biosconfig ${words.join(" ")} ended with ${status}`);
  return stdout.toString();
}
