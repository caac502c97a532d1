// The page: its wall, or one graph. The address tells which: #example=NAME or #graph=LINK.

import { findExample, kTopics, pictureOf, type Example } from "./catalog";
import { h, tell } from "./dom";
import type { Channel, GraphDocument } from "./engine";
import { fromLink } from "./link";
import { engine, giveFiles, loadExample } from "./load";
import type { View } from "./session";
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
        const { ground, channel, size, camera, over } = JSON.parse(text ?? "{}") as Partial<View>;
        return {
            ground: ground && ["square", "scene", "sphere", "torus"].includes(ground) ? ground : "square",
            channel: typeof channel === "string" ? (channel as Channel) : "color",
            size: size && [256, 512, 1024, 2048].includes(size) ? size : kSize,
            ...(typeof camera === "string" ? { camera } : {}),
            ...(over === "checker" ? { over } : {}),
        };
    } catch {
        return kPlain;
    }
}

function place(element: HTMLElement, title: string): void {
    document.getElementById("page")!.replaceChildren(element);
    document.title = title === "" ? "Fernwick shaders" : `${title} – Fernwick shaders`;
}

function showWall(message?: string): void {
    studio?.close();
    studio = undefined;
    place(wall(), "");
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
        studio = new Studio(ready, what);
        place(studio.element, what.title);
    } catch (error) {
        if (mine === turn) showWall(error instanceof Error ? error.message : String(error));
    }
}

function openGraph(document: GraphDocument, title: string, view = kPlain): Promise<void> {
    return open(async () => ({ title, document, view }), title);
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
            const { graph, view } = await fromLink(value!);
            return { title: titleOf(graph), document: graph, view: viewFrom(view) };
        }, "A graph");
    } else {
        ++turn;
        showWall();
    }
}

function titleOf(graph: GraphDocument): string {
    return graph.output.charAt(0).toUpperCase() + graph.output.slice(1) || "A graph";
}

async function take(files: readonly File[], at: Element | null): Promise<void> {
    for (const file of files)
        try {
            if (/\.json$/i.test(file.name)) {
                const graph = graphOf(await file.text(), file.name);
                await openGraph(graph, file.name.replace(/\.json$/i, ""));
            } else {
                if (studio === undefined) {
                    const picture = {
                        shaders: { picture: { source: "picture", file: file.name } },
                        output: "picture",
                    };
                    const isModel = /\.(gltf|glb|obj)$/i.test(file.name);
                    await openGraph(
                        isModel ? await loadExample(kTopics[0]!.examples[0]!) : picture,
                        file.name,
                    );
                }
                await studio?.take(file, at);
            }
        } catch (error) {
            tell(error instanceof Error ? error.message : String(error));
        }
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
    (event.target as HTMLElement).blur?.();
    if (key === "y" || event.shiftKey) studio.session.redo();
    else studio.session.undo();
});
// Keeping all files for later mustn't hold up the first picture.
if ("serviceWorker" in navigator)
    setTimeout(() => void navigator.serviceWorker.register("offline.js").catch(() => undefined), 3000);
// The engine comes while the reader looks at the wall.
(globalThis.requestIdleCallback ?? ((start: () => void) => setTimeout(start, 200)))(
    () => void engine().catch(() => undefined),
);
void route();
