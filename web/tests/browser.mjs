// The built page in Chromium, as the tests drive it.

import puppeteer from "puppeteer-core";

export function launch() {
    return puppeteer.launch({
        protocolTimeout: 600_000, // a machine that does much else takes long
        executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
        args: [
            "--no-sandbox",
            "--disable-dev-shm-usage",
            "--use-angle=swiftshader",
            "--enable-unsafe-swiftshader",
            "--force-color-profile=srgb",
            "--js-flags=--expose-gc",
        ],
    });
}

/** A page that remembers what went wrong in it: errors of scripts, of the console, and requests to elsewhere. */
export async function openPage(
    browser,
    address,
    { width = 1440, height = 900, dark = false, phone = false } = {},
) {
    const page = await browser.newPage();
    await page.setViewport({ width, height, isMobile: phone, hasTouch: phone, deviceScaleFactor: 1 });
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: dark ? "dark" : "light" }]);
    // The page tells of each whole picture; the last one is kept for `pictureOf`.
    await page.evaluateOnNewDocument(() =>
        addEventListener("picture", (event) => (globalThis.lastPicture = event.detail.picture), true),
    );
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
    return page.waitForFunction(() => document.querySelector(".stage")?.dataset.state === "ready", {
        timeout,
        polling: 20,
    });
}

/** The last picture that was shown whole, as the engine made it. */
export async function pictureOf(page) {
    const { width, height, text } = await page.evaluate(() => {
        const { width, height, pixels } = globalThis.lastPicture;
        let text = "";
        for (let i = 0; i < pixels.length; i += 32768)
            text += String.fromCharCode(...pixels.subarray(i, i + 32768));
        return { width, height, text: btoa(text) };
    });
    return { width, height, pixels: new Uint8Array(Buffer.from(text, "base64")) };
}

/** Resolves when another picture than `old` is shown whole. */
export async function waitForPicture(page, old) {
    for (let tries = 0; tries < 200; ++tries) {
        await settled(page);
        if (!Buffer.from((await pictureOf(page)).pixels).equals(Buffer.from(old.pixels))) return;
        await new Promise((done) => setTimeout(done, 50));
    }
    throw new Error("the picture stays the same");
}
