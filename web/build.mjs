// Puts the page together from web/, examples/ and the gallery, into the folder that is named: static files and no more.
// `node build.mjs FOLDER [--engine FOLDER]`: --engine tells where engine.wasm lies.

import * as esbuild from "esbuild";
import { createHash } from "node:crypto";
import {
    cpSync,
    existsSync,
    mkdirSync,
    readFileSync,
    readdirSync,
    rmSync,
    statSync,
    writeFileSync,
} from "node:fs";
import { basename, dirname, join, relative } from "node:path";
import { fileURLToPath } from "node:url";

const web = dirname(fileURLToPath(import.meta.url));
const root = dirname(web);
const kRows = ["--output", "--outputs", "--over", "--camera"];

/** How the gallery makes its pictures: by their names, what follows the command. */
function galleryLines() {
    const lines = new Map();
    const gallery = join(root, "docs/gallery");
    for (const list of readdirSync(gallery).filter((name) => name.endsWith(".list")))
        for (const line of readFileSync(join(gallery, list), "utf8").split("\n")) {
            const [picture, ...words] = line.trim().split(/\s+/);
            if (picture && !picture.startsWith("#")) lines.set(picture, words);
        }
    return lines;
}

/** What the gallery's pages show in their pictures, in words, and what they tell of them. */
function galleryTexts() {
    const texts = new Map();
    const gallery = join(root, "docs/gallery");
    for (const page of readdirSync(gallery).filter((name) => name.endsWith(".md"))) {
        const blocks = readFileSync(join(gallery, page), "utf8").split("\n\n");
        blocks.forEach((block, i) => {
            for (const [, shows, picture] of block.matchAll(/!\[([^\]]*)\]\(([^)]+)\)/g)) {
                const tells = blocks
                    .slice(i + 1)
                    .find((next) => /^[A-Z`]/.test(next) && !next.startsWith("`fernwick"));
                texts.set(picture, { shows, tells: (tells ?? "").replaceAll("\n", " ") });
            }
        });
    }
    return texts;
}

/** The view that shows what a gallery picture shows. */
function viewOf(words) {
    const view = { render: words[0] === "render", channel: words.includes("--lit") ? "lit" : "color" };
    for (const option of kRows) {
        const at = words.indexOf(option);
        if (at < 0) continue;
        if (option === "--camera") view.camera = words[at + 1];
        else if (option === "--over") view.over = words[at + 1];
        else view.channel = words[at + 1].split(",")[0];
    }
    return view;
}

function catalog() {
    const lines = galleryLines();
    const texts = galleryTexts();
    const topics = JSON.parse(readFileSync(join(web, "examples.json"), "utf8"));
    const missing = new Set(
        readdirSync(join(root, "examples"))
            .filter((name) => name.endsWith(".json"))
            .map((name) => basename(name, ".json")),
    );
    for (const topic of topics)
        topic.examples = topic.examples.map((example) => {
            if (!missing.delete(example.graph))
                throw new Error(`examples.json: ${example.graph} is no example, or named twice`);
            const words = lines.get(example.picture);
            const text = texts.get(example.picture);
            if (!words) throw new Error(`examples.json: no list of the gallery makes ${example.picture}`);
            if (!text?.shows) throw new Error(`the gallery doesn't tell what ${example.picture} shows`);
            const graph = JSON.parse(readFileSync(join(root, "examples", example.graph + ".json"), "utf8"));
            const classes = [
                ...new Set(Object.values(graph.shaders).flatMap((shader) => shader.class ?? [])),
            ];
            return { ...example, ...text, ...viewOf(words), classes };
        });
    if (missing.size > 0) throw new Error(`examples.json lacks ${[...missing].join(", ")}`);
    return topics;
}

function filesBelow(folder) {
    return readdirSync(folder, { withFileTypes: true }).flatMap((entry) => {
        const path = join(folder, entry.name);
        return entry.isDirectory() ? filesBelow(path) : [path];
    });
}

const folder = process.argv[2];
const engineAt = process.argv.indexOf("--engine");
if (!folder || folder.startsWith("--")) throw new Error("name the folder that the page goes into");
const app = join(folder, "app");
rmSync(app, { recursive: true, force: true });
mkdirSync(join(app, "examples"), { recursive: true });
mkdirSync(join(app, "pictures"), { recursive: true });

const topics = catalog();
const exampleFiles = readdirSync(join(root, "examples")).filter((name) =>
    /\.(json|png|obj|gltf)$/.test(name),
);
const shared = {
    bundle: true,
    minify: true,
    format: "esm",
    target: "es2022",
    legalComments: "linked",
    define: { CATALOG: JSON.stringify(topics), EXAMPLE_FILES: JSON.stringify(exampleFiles) },
    logLevel: "warning",
    absWorkingDir: web,
};
await esbuild.build({
    ...shared,
    entryPoints: ["src/main.ts", "src/live.ts", "src/model-worker.ts"],
    outdir: app,
    splitting: true,
    chunkNames: "part-[hash]",
});
await esbuild.build({ ...shared, entryPoints: ["src/engine-worker.ts"], outdir: app });
await esbuild.build({ ...shared, entryPoints: ["style.css", "live.css"], outdir: app });
cpSync(join(web, "index.html"), join(folder, "index.html"));
cpSync(join(web, "icon.svg"), join(app, "icon.svg"));
cpSync(join(web, "manifest.webmanifest"), join(app, "manifest.webmanifest"));
for (const name of exampleFiles) cpSync(join(root, "examples", name), join(app, "examples", name));
writeFileSync(join(app, "catalog.json"), JSON.stringify(topics, null, 1));
for (const { examples } of topics)
    for (const { picture } of examples)
        cpSync(join(root, "docs/gallery", picture), join(app, "pictures", picture));
if (engineAt > 0) {
    const engine = process.argv[engineAt + 1];
    for (const name of readdirSync(engine).filter((name) => /^engine.*\.(wasm|mjs|js)$/.test(name)))
        cpSync(join(engine, name), join(app, name));
}

// The service worker knows all files of the page, and is another one whenever one of them is.
const files = [join(folder, "index.html"), ...filesBelow(app)].filter((file) => !/\.(txt|map)$/.test(file));
const digest = createHash("sha256");
for (const file of files.sort()) digest.update(file).update(readFileSync(file));
const names = files.map((file) => relative(folder, file));
await esbuild.build({
    ...shared,
    entryPoints: ["src/offline.ts"],
    outfile: join(folder, "offline.js"),
    format: "iife",
    define: { FILES: JSON.stringify(names), VERSION: JSON.stringify(digest.digest("hex").slice(0, 16)) },
});
const bytes = files.reduce((sum, file) => sum + statSync(file).size, 0);
console.log(`${files.length + 1} files, ${(bytes / 1e6).toFixed(1)} MB in ${folder}`);
if (!existsSync(join(app, "engine.wasm"))) console.warn("without engine.wasm the page shades nothing");
