// The page: its wall, or one graph. The address tells which: #example=NAME or #graph=LINK.

import { findExample, pictureOf, type Example } from "./catalog";
import { h, painted, showDialog, tell } from "./dom";
import type { Channel, GraphDocument } from "./engine";
import { isSlow, kindOfFile, kTaken, requireSize, type Kind } from "./files";
import { fromLink, titleFrom, toHash } from "./link";
import { engine, giveFiles, loadExample } from "./load";
import { kMostFrames, type View } from "./session";
import { startDialog, startOf } from "./start";
import { graphOf, Studio, type Opened } from "./studio";
import { wall } from "./wall";

const kSize = 512;
const kPlain: View = { ground: "square", channel: "color", size: kSize };

let studio: Studio | undefined;
let turn = 0;
let wallPlace = 0;

function viewOf(example: Example): View {
    return {
        ground: example.render ? "scene" : "square",
        channel: example.channel,
        size: kSize,
        ...(example.camera ? { camera: example.camera } : {}),
        ...(example.over ? { over: example.over } : {}),
    };
}

/** Only what a view may hold, of what came in a link. */
function viewFrom(text: string | undefined): View {
    try {
        const { ground, channel, size, camera, over, last } = JSON.parse(text ?? "{}") as Partial<View>;
        return {
            ground: ground && ["square", "scene", "sphere", "torus"].includes(ground) ? ground : "square",
            channel: typeof channel === "string" ? (channel as Channel) : "color",
            size: size && [256, 512, 1024, 2048].includes(size) ? size : kSize,
            ...(typeof camera === "string" ? { camera } : {}),
            ...(over === "checker" ? { over } : {}),
            ...(Number.isInteger(last) && last! >= 1 && last! <= kMostFrames ? { last: last! } : {}),
        };
    } catch {
        return kPlain;
    }
}

function place(element: HTMLElement, title: string): void {
    document.getElementById("page")!.replaceChildren(element);
    document.title = title === "" ? "Fernwick shaders" : `${title} – Fernwick shaders`;
}

const choose = (files: readonly File[]) => void take(files, null);

function showWall(message?: string): void {
    studio?.close();
    studio = undefined;
    place(wall(choose, start), "");
    scrollTo(0, wallPlace);
    if (message !== undefined)
        document.querySelector(".wall")!.prepend(h("p", { class: "notice", role: "alert" }, message));
}

function waiting(title: string, picture: string | undefined): HTMLElement {
    return h(
        "main",
        { class: "studio waiting", "aria-busy": "true" },
        h("header", { class: "bar" }, h("h1", {}, title)),
        h(
            "section",
            { class: "stage" },
            h("div", { class: "frame" }, picture === undefined ? null : h("img", { src: picture, alt: "" })),
        ),
    );
}

async function open(opened: () => Promise<Opened>, title: string, picture?: string): Promise<void> {
    const mine = ++turn;
    if (document.querySelector(".wall")) wallPlace = scrollY;
    studio?.close();
    studio = undefined;
    place(waiting(title, picture), title);
    scrollTo(0, 0);
    try {
        const [ready, what] = await Promise.all([engine(), opened()]);
        await giveFiles(ready, what.document);
        if (mine !== turn) return;
        studio = new Studio(ready, what, choose);
        place(studio.element, what.title);
    } catch (error) {
        if (mine === turn) showWall(error instanceof Error ? error.message : String(error));
    }
}

/**
 * Opens a graph in an entry of its own in the browser's history: Back returns to what was there before. Tells whether
 * the address holds it, which a reload needs.
 */
async function openGraph(document: GraphDocument, name: string, view = kPlain): Promise<boolean> {
    const mine = ++turn;
    const title = titleFrom(name) || titleOf(document);
    const [hash] = await Promise.all([
        toHash({ graph: document, title, view: JSON.stringify(view) }),
        studio?.keep(),
    ]);
    if (mine === turn) {
        // What is too large for an address leads back to the wall.
        history.pushState(null, "", hash ?? "#file");
        await open(async () => ({ title, document, view }), title);
    }
    return hash !== undefined;
}

async function route(): Promise<void> {
    const [, key, value] = /^#(\w+)=(.*)$/.exec(location.hash) ?? [];
    if (key === "example") {
        const example = findExample(value!);
        if (example === undefined) {
            showWall(`There is no example “${value}”.`);
            return;
        }
        const picture = pictureOf(example);
        await open(
            async () => ({
                title: example.title,
                document: await loadExample(example),
                view: viewOf(example),
                placeholder: picture,
            }),
            example.title,
            picture,
        );
    } else if (key === "graph") {
        await open(async () => {
            const { graph, view, title } = await fromLink(value!);
            return { title: title ?? titleOf(graph), document: graph, view: viewFrom(view) };
        }, "A graph");
    } else {
        ++turn;
        showWall();
    }
}

function titleOf(graph: GraphDocument): string {
    return graph.output.charAt(0).toUpperCase() + graph.output.slice(1) || "A graph";
}

/** An editor for what is no graph: a picture gets one of its own, a model the first of the cloths. */
async function openFor(file: File): Promise<Studio> {
    if (studio !== undefined) return studio;
    const cloth = findExample("weave-rounded");
    if (kindOfFile(file) === "model" && cloth !== undefined) {
        history.pushState(null, "", `#example=${cloth.graph}`);
        await route();
    } else
        await openGraph(
            { shaders: { picture: { source: "picture", file: file.name } }, output: "picture" },
            file.name,
        );
    if (studio === undefined) throw new Error(`There is no editor for ${file.name}.`);
    return studio;
}

/** Takes what was dropped or chosen, graphs first, and tells what came of each file. */
async function take(files: readonly File[], at: Element | null): Promise<void> {
    if (files.length === 0) return;
    const said: string[] = [];
    const attempt = async (file: File, work: () => Promise<string>) => {
        try {
            requireSize(file);
            if (isSlow(file)) {
                tell(`Reading ${file.name} …`, 600_000);
                await painted();
            }
            said.push(await work());
        } catch (error) {
            said.push(error instanceof Error ? error.message : String(error));
        }
    };
    const ofKind = (kind: Kind) => files.filter((file) => kindOfFile(file) === kind);
    const [graph, ...otherGraphs] = ofKind("graph");
    const [model, ...otherModels] = ofKind("model");
    if (graph !== undefined)
        await attempt(graph, async () => {
            const document = graphOf(await graph.text(), graph.name);
            if (!(await openGraph(document, graph.name.replace(/\.json$/i, ""))))
                return `${graph.name} is too large for an address: after a reload it is gone.`;
            return files.length > 1 ? `${graph.name} is open.` : "";
        });
    let needed = new Set<string>();
    if (model !== undefined)
        await attempt(model, async () => {
            const editor = await openFor(model);
            const beside = files.filter((file) => ["part", "picture"].includes(kindOfFile(file)));
            const taken = await editor.takeModel(model, beside);
            needed = taken.needed;
            return taken.said;
        });
    let before = 0;
    let into: string | undefined;
    for (const file of ofKind("picture").filter(({ name }) => !needed.has(name)))
        await attempt(file, async () => {
            const editor = await openFor(file);
            into ??= editor.session.selected;
            const place = at?.isConnected && before === 0 ? at : null;
            const where = await editor.takePicture(file, place, into, before > 0);
            ++before;
            return where;
        });
    for (const { name } of otherGraphs) said.push(`${name} isn't open: one graph at a time.`);
    for (const { name } of otherModels) said.push(`${name} wasn't taken: one model at a time.`);
    for (const { name } of ofKind("part").filter((file) => !needed.has(file.name)))
        said.push(`${name} belongs to no model that came with it.`);
    const unknown = ofKind("unknown").map(({ name }) => name);
    const more = unknown.length > 3 ? ` and ${unknown.length - 3} more` : "";
    if (unknown.length > 0)
        said.push(
            `${unknown.slice(0, 3).join(", ")}${more}: of no kind that the page takes. It takes ${kTaken}.`,
        );
    tell(said.filter(Boolean).join(" "));
}

function start(): void {
    const dialog = startDialog((from, name) => {
        const { document, ground } = startOf(from, name);
        const isEmpty = ground === "square" && from.table(name)?.fields.some(({ type }) => type === "shader");
        void openGraph(document, name, { ...kPlain, ground }).then(
            () =>
                isEmpty && tell(`The slots of ${document.output} are empty: plug in what it shall work on.`),
        );
    });
    showDialog(dialog);
}

window.addEventListener("hashchange", () => void route());
window.addEventListener("dragover", (event) => {
    event.preventDefault();
    document.body.classList.add("dropping");
});
window.addEventListener(
    "dragleave",
    (event) => event.relatedTarget === null && document.body.classList.remove("dropping"),
);
window.addEventListener("drop", (event) => {
    event.preventDefault();
    document.body.classList.remove("dropping");
    void take([...(event.dataTransfer?.files ?? [])], event.target as Element | null);
});
window.addEventListener("keydown", (event) => {
    if (!(event.ctrlKey || event.metaKey) || studio === undefined) return;
    const isText =
        event.target instanceof HTMLInputElement &&
        event.target.type === "text" &&
        event.target.selectionStart !== event.target.selectionEnd;
    const key = event.key.toLowerCase();
    if ((key !== "z" && key !== "y") || isText) return;
    event.preventDefault();
    // What is being typed would stay as it is; the fields give the focus back where they are made anew.
    const entry = event.target instanceof HTMLInputElement && event.target.type === "text" && event.target;
    if (entry) entry.blur();
    if (key === "y" || event.shiftKey) studio.session.redo();
    else studio.session.undo();
    if (entry && entry.isConnected) entry.focus({ preventScroll: true });
});
// Keeping all files for later mustn't hold up the first picture.
if ("serviceWorker" in navigator)
    setTimeout(() => void navigator.serviceWorker.register("offline.js").catch(() => undefined), 3000);
// The engine comes while the reader looks at the wall.
(globalThis.requestIdleCallback ?? ((start: () => void) => setTimeout(start, 200)))(
    () => void engine().catch(() => undefined),
);
void route();
