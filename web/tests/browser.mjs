// The built page in a real browser: a server of its files, and Chromium.

import { createReadStream, existsSync, statSync } from "node:fs";
import { createServer } from "node:http";
import { extname, join, normalize } from "node:path";
import { fileURLToPath } from "node:url";
import puppeteer from "puppeteer-core";

export const kRoot = fileURLToPath(new URL("../..", import.meta.url));
export const kSite = process.env.FERNWICK_SITE ?? join(kRoot, "build/site");

const kTypes = { ".html": "text/html", ".js": "text/javascript", ".css": "text/css", ".wasm": "application/wasm", ".json": "application/json", ".png": "image/png", ".svg": "image/svg+xml", ".webmanifest": "application/manifest+json" };

/** A plain server of static files on a port of the loopback address that is free. */
export function serve(folder = kSite, port = 0) {
    const asked = [];
    const server = createServer((request, response) => {
        const path = normalize(decodeURIComponent(new URL(request.url, "http://localhost").pathname));
        asked.push(path);
        let file = join(folder, path);
        if (existsSync(file) && statSync(file).isDirectory()) file = join(file, "index.html");
        if (!file.startsWith(folder) || !existsSync(file)) {
            response.writeHead(404).end();
            return;
        }
        response.writeHead(200, { "content-type": kTypes[extname(file)] ?? "application/octet-stream" });
        createReadStream(file).pipe(response);
    });
    return new Promise((ready) =>
        server.listen(port, "127.0.0.1", () => ready({ address: `http://127.0.0.1:${server.address().port}/`, asked, close: () => new Promise((done) => (server.closeAllConnections(), server.close(done))) })),
    );
}

export function launch() {
    return puppeteer.launch({
        executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
        args: ["--no-sandbox", "--use-angle=swiftshader", "--enable-unsafe-swiftshader", "--force-color-profile=srgb", "--js-flags=--expose-gc"],
    });
}

/** A page that remembers what went wrong in it: errors of scripts, of the console, and requests to elsewhere. */
export async function openPage(browser, address, { width = 1440, height = 900, dark = false, phone = false } = {}) {
    const page = await browser.newPage();
    await page.setViewport({ width, height, isMobile: phone, hasTouch: phone, deviceScaleFactor: 1 });
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: dark ? "dark" : "light" }]);
    page.faults = [];
    page.on("pageerror", (error) => page.faults.push(String(error)));
    page.on("console", (message) => {
        // What this machine's software rendering tells of itself is no fault of the page.
        if (["error", "warn"].includes(message.type()) && !/GPU stall|GL Driver Message/.test(message.text()))
            page.faults.push(`${message.text()} ${message.location().url ?? ""}`);
    });
    page.on("request", (request) => {
        const url = request.url();
        if (!url.startsWith(address) && !/^(data|blob):/.test(url)) page.faults.push(`a request to ${url}`);
    });
    return page;
}

/** Goes to an address of the page, and resolves when its picture is shaded. */
export async function openGraph(page, address) {
    await page.goto("about:blank");
    await page.goto(address);
    await settled(page);
}

/** Resolves when all that was asked for is shown. */
export function settled(page, timeout = 60_000) {
    return page.waitForFunction(() => document.querySelector(".stage")?.dataset.state === "ready", { timeout, polling: 20 });
}

/** The pixels of the picture that is shown, as the engine made them. */
export async function shownPixels(page) {
    const { width, height, text } = await page.evaluate(() => {
        const canvas = document.querySelector("canvas.picture");
        const { data } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
        let text = "";
        for (let i = 0; i < data.length; i += 32768) text += String.fromCharCode(...data.subarray(i, i + 32768));
        return { width: canvas.width, height: canvas.height, text: btoa(text) };
    });
    return { width, height, pixels: Buffer.from(text, "base64") };
}
