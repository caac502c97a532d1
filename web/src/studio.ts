// One graph: its picture large, its tree, and the fields of what is selected.

import { h, icon, tell } from "./dom";
import type { Engine, GraphDocument } from "./engine";
import { Fields, iconButton } from "./fields";
import { isGraph, shaderOf, slots, tableName } from "./graph";
import { toLink } from "./link";
import { giveFiles, isOwn } from "./load";
import { givePicture } from "./pictures";
import { Session, type View } from "./session";
import { Stage } from "./stage";
import { takeDialog } from "./take";
import { Tree } from "./tree";

const kSizes = [256, 512, 1024, 2048];

export interface Opened {
    title: string;
    document: GraphDocument;
    view: View;
    /** A picture to show until the first one is shaded. */
    placeholder?: string;
}

export class Studio {
    readonly element: HTMLElement;
    readonly session: Session;
    readonly stage: Stage;
    readonly #engine: Engine;
    readonly #undo = iconButton("undo", "Undo", () => this.session.undo());
    readonly #redo = iconButton("redo", "Redo", () => this.session.redo());
    #linkTimer = 0;

    constructor(engine: Engine, { title, document, view, placeholder }: Opened) {
        this.#engine = engine;
        this.session = new Session(engine, title, document, view);
        this.stage = new Stage(this.session, placeholder);
        const size = h(
            "select",
            {
                "aria-label": "Size of the picture",
                onchange: () => this.session.show({ size: Number(size.value) }),
            },
            ...kSizes.map((pixels) => h("option", { value: pixels }, `${pixels} px`)),
        );
        size.value = String(view.size);
        this.stage.element.querySelector(".stage-bar")!.append(size);
        this.element = h(
            "main",
            { class: "studio" },
            h(
                "header",
                { class: "bar" },
                h(
                    "a",
                    { href: "#", class: "icon-button", "aria-label": "All examples", title: "All examples" },
                    icon("back"),
                ),
                h("h1", {}, title),
                h(
                    "div",
                    { class: "bar-tools" },
                    this.#undo,
                    this.#redo,
                    iconButton("link", "Copy a link to this graph", () => void this.#share()),
                    h(
                        "button",
                        { type: "button", class: "main", "aria-label": "Take", onclick: () => this.#take() },
                        icon("download"),
                        h("span", {}, "Take"),
                    ),
                ),
            ),
            this.stage.element,
            h("aside", { class: "side" }, new Tree(this.session).element, new Fields(this.session).element),
        );
        this.session.addEventListener("document", () => this.#changed());
        this.#changed();
        void this.session.recheck();
    }

    close(): void {
        clearTimeout(this.#linkTimer);
        this.stage.close();
    }

    /** Files that were dropped: at a place of the page, or anywhere. Rejects with a sentence for the reader. */
    async take(file: File, at: Element | null): Promise<void> {
        if (/\.(gltf|glb|obj)$/i.test(file.name)) {
            const { openModel, wholeMesh } = await import("./model-files");
            const mesh = wholeMesh(await openModel(file.name, await file.arrayBuffer()));
            isOwn(file.name);
            await this.stage.takeModel(file.name, mesh);
            tell(`The picture lies on ${file.name} now.`);
            return;
        }
        await givePicture(this.#engine, file);
        isOwn(file.name);
        this.#plugPicture(file.name, at);
    }

    #plugPicture(file: string, at: Element | null): void {
        const { session } = this;
        const fileField = session.tableOf("picture")!.fields.find((field) => field.type === "file")!;
        const isPicture = (name: string) => shaderOf(session.document, name)?.source === "picture";
        const slotName = (at?.closest("[data-slot]") as HTMLElement | null)?.dataset["slot"];
        const shader = shaderOf(session.document, session.selected);
        const table = shader && session.tableOf(tableName(shader));
        const slot = table?.fields.find((field) => field.name === slotName);
        // Where it was dropped, else where a picture already is, else in the first empty slot.
        if (slot !== undefined) {
            const added = session.plugNew(session.selected, slot, "picture");
            if (added !== undefined) session.set(added, fileField, file);
        } else {
            const waiting = Object.entries(session.document.shaders).find(
                ([name, each]) => isPicture(name) && each["file"] === file,
            )?.[0];
            const name =
                waiting ??
                (isPicture(session.selected)
                    ? session.selected
                    : Object.keys(session.document.shaders).find(isPicture));
            const empty = shader && slots(shader, session.tableOf).find((each) => each.shader === null);
            if (name !== undefined) session.set(name, fileField, file);
            else if (empty !== undefined) {
                const added = session.plugNew(session.selected, empty.field, "picture");
                if (added !== undefined) session.set(added, fileField, file);
            } else {
                tell("Drop the picture onto a slot, or select a shader that has one.");
                return;
            }
        }
        void session.recheck();
        this.stage.refresh();
        tell(`${file} is in the graph.`);
    }

    #changed(): void {
        this.#undo.disabled = !this.session.canUndo;
        this.#redo.disabled = !this.session.canRedo;
        void giveFiles(this.#engine, this.session.document).catch((error: Error) => tell(error.message));
        clearTimeout(this.#linkTimer);
        if (this.session.changed) this.#linkTimer = window.setTimeout(() => void this.#address(), 500);
    }

    /** The graph goes into the address, so that it outlives a reload. */
    async #address(): Promise<string> {
        const hash = `#graph=${await toLink({ graph: this.session.document, view: JSON.stringify(this.session.view) })}`;
        if (this.session.changed) history.replaceState(null, "", hash);
        return new URL(hash, location.href).href;
    }

    async #share(): Promise<void> {
        const link = await this.#address();
        history.replaceState(null, "", link);
        await navigator.clipboard.writeText(link).then(
            () => tell("The link is copied. It holds the whole graph."),
            () => tell("The link is in the address bar. It holds the whole graph."),
        );
    }

    #take(): void {
        const dialog = takeDialog(this.session, this.stage);
        dialog.addEventListener("close", () => dialog.remove());
        document.body.append(dialog);
        dialog.showModal();
    }
}

/** A graph from a file. Throws a sentence for the reader. */
export function graphOf(text: string, name: string): GraphDocument {
    let value: unknown;
    try {
        value = JSON.parse(text);
    } catch (error) {
        throw new Error(`${name} is no JSON: ${error instanceof Error ? error.message : String(error)}`);
    }
    if (!isGraph(value)) throw new Error(`${name} is no graph: it needs “shaders” and an “output”.`);
    return value;
}
