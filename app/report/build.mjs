// Bundles the page into bundle/report.html, or with --tests the tests into build/tests/. Called by
// scripts/build-report.sh.

import { createHash } from "node:crypto";
import { mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { basename } from "node:path";
import { build, transform } from "esbuild";

const read = (file) => readFileSync(new URL(file, import.meta.url), "utf8");

function policyHash(text) {
  return `'sha256-${createHash("sha256").update(text).digest("base64")}'`;
}

/** The dark colours stand once in the source, and twice in the page: by choice and by the system. */
function withDarkColours(css) {
  const [, dark] = /:root\[data-theme="dark"\] \{([^}]*)\}/.exec(css);
  return css.replace(/\/\* The dark colours[^"]*"";/, dark.trim());
}

function licences() {
  const folder = new URL("licences/", import.meta.url);
  return readdirSync(folder).sort()
    .map((file) => `${basename(file, ".txt")}\n\n${readFileSync(new URL(file, folder), "utf8").trim()}\n`)
    .join("\n\n")
    .replaceAll("&", "&amp;")
    .replaceAll("<", "&lt;");
}

async function buildPage() {
  const bundled = await build({
    entryPoints: [new URL("src/main.ts", import.meta.url).pathname],
    bundle: true, minify: true, write: false, format: "iife", target: "es2021", charset: "utf8",
    legalComments: "none",
  });
  const script = bundled.outputFiles[0].text.trim();
  const style = (await transform(withDarkColours(read("src/page.css")), { loader: "css", minify: true })).code.trim();
  const policy = [
    "default-src 'none'", `script-src ${policyHash(script)}`, `style-src ${policyHash(style)}`,
    "base-uri 'none'", "form-action 'none'",
  ].join("; ");
  const parts = { POLICY: policy, STYLE: style, LICENCES: licences(), SCRIPT: script };
  const page = read("src/page.html").replace(/@(POLICY|STYLE|LICENCES|SCRIPT)@/g, (_, name) => parts[name]);
  if (page.split("@BRINDLE_REPORT_DATA@").length !== 2) {
    throw new Error("the place of the data must stand in the page once");
  }
  mkdirSync(new URL("bundle/", import.meta.url), { recursive: true });
  writeFileSync(new URL("bundle/report.html", import.meta.url), page);
  console.log(`bundle/report.html: ${Buffer.byteLength(page)} bytes`);
}

async function buildTests() {
  const folder = new URL("test/", import.meta.url);
  const out = new URL("build/tests/", import.meta.url).pathname;
  rmSync(out, { recursive: true, force: true });
  await build({
    entryPoints: readdirSync(folder).filter((file) => file.endsWith(".test.ts"))
      .map((file) => new URL(file, folder).pathname),
    bundle: true, platform: "node", format: "esm", target: "node20", outdir: out,
    outExtension: { ".js": ".mjs" }, logLevel: "warning",
  });
}

await (process.argv.includes("--tests") ? buildTests() : buildPage());
