// Pictures of the page for the eye: `node web/tests/look.mjs FOLDER [NAME...]`.

import { mkdirSync } from "node:fs";
import { join } from "node:path";
import { launch, openPage, settled } from "./browser.mjs";
import { serve } from "./server.mjs";

const [folder, ...wanted] = process.argv.slice(2);
mkdirSync(folder, { recursive: true });
const { address, close } = await serve();
const browser = await launch();
const phone = { width: 390, height: 844, phone: true };
const shots = {
    wall: ["", {}],
    "wall-dark": ["", { dark: true }],
    "wall-phone": ["", phone],
    cloth: ["#example=weave-rounded", {}],
    "cloth-dark": ["#example=weave-twill", { dark: true }],
    "cloth-phone": ["#example=weave-rounded", phone],
    "room-phone-dark": ["#example=studio", { ...phone, dark: true }],
    sequence: ["#example=ripple-sequence", {}],
    sphere: ["#example=weave-yarn", {}],
    leaves: ["#example=mix-hundred", {}],
    take: ["#example=drip-two-ripples", {}],
    new: ["", {}],
    "new-phone-dark": ["", { ...phone, dark: true }],
};
for (const [name, [hash, options]] of Object.entries(shots)) {
    if (wanted.length > 0 && !wanted.includes(name)) continue;
    const page = await openPage(browser, address, options);
    await page.goto(address + hash, { waitUntil: "networkidle2" });
    if (hash !== "") await settled(page).catch(() => page.faults.push("it wasn't shaded"));
    if (name === "sphere") {
        await page.click('.grounds input[value="sphere"]');
        await new Promise((done) => setTimeout(done, 500));
        await settled(page);
        await new Promise((done) => setTimeout(done, 1000));
    }
    if (name === "take") await page.click(".bar .main");
    if (name.startsWith("new")) {
        await page.click('button[title="A new graph"]');
        await page.waitForSelector(".starts button");
    }
    await new Promise((done) => setTimeout(done, 300));
    await page.screenshot({ path: join(folder, `${name}.png`) });
    console.log(name, page.faults.join("; "));
    await page.close();
}
await browser.close();
await close();
