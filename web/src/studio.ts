// One graph: its picture large, its tree, and the fields of what is selected.

import { h, icon, showDialog, tell } from "./dom";
import type { Engine, GraphDocument } from "./engine";
import { Fields, iconButton } from "./fields";
import { openButton } from "./files";
import { isGraph, shaderOf, slots, withField, withNewShader } from "./graph";
import { toHash } from "./link";
import { giveFiles, isOwn } from "./load";
import { readModel } from "./model-reader";
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
    #isInAddress = false;
    #closed = false;

    /** @param take takes files that were chosen */
    constructor(
        engine: Engine,
        { title, document, view, placeholder }: Opened,
        take: (files: readonly File[]) => void,
    ) {
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
                    {
                        href: "#",
                        class: "icon-button",
                        "aria-label": "All examples",
                        title: "All examples",
                        onclick: (event: MouseEvent) => void this.#leave(event),
                    },
                    icon("back"),
                ),
                h("h1", {}, title),
                h(
                    "div",
                    { class: "bar-tools" },
                    this.#undo,
                    this.#redo,
                    openButton(take, true),
                    iconButton("link", "Copy a link to this graph", () => void this.#share()),
                    h(
                        "button",
                        {
                            type: "button",
                            class: "main",
                            "aria-label": "Download",
                            onclick: () => this.#take(),
                        },
                        icon("download"),
                        h("span", {}, "Download"),
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
        this.#closed = true;
        clearTimeout(this.#linkTimer);
        this.stage.close();
    }

    /**
     * Lays the picture on a model. Tells what came of it, and which of the files beside it it needs. Rejects with a
     * sentence for the reader.
     */
    async takeModel(file: File, beside: readonly File[]): Promise<{ said: string; needed: Set<string> }> {
        const { mesh, needed, missing } = await readModel(file, beside);
        if (this.#closed) return { said: "", needed };
        isOwn(file.name);
        await this.stage.takeModel(file.name, mesh);
        const left = missing.slice(0, 3).join(", ");
        const bare = mesh.uvs.length === 0 ? ` ${file.name} has no UV: it is seen in one colour.` : "";
        return {
            said: `The picture lies on ${file.name} now${left && `, without its own ${left}`}.${bare}`,
            needed,
        };
    }

    /**
     * Plugs a picture in, and tells where. Rejects with a sentence for the reader.
     * @param at        what it was dropped on
     * @param into      the shader that was selected then
     * @param isAnother it came together with others, and mustn't take their place
     */
    async takePicture(file: File, at: Element | null, into: string, isAnother: boolean): Promise<string> {
        await givePicture(this.#engine, file);
        isOwn(file.name);
        const said = this.#plugPicture(file.name, at, into, isAnother);
        void this.session.recheck();
        this.stage.refresh();
        return said;
    }

    /** In the slot that it was dropped on, else where a picture is wanted, else in place of a colour, else anywhere. */
    #plugPicture(file: string, at: Element | null, into: string, isAnother: boolean): string {
        const { session } = this;
        const { document } = session;
        const table = session.tableOf("picture")!;
        const fileField = table.fields.find((field) => field.type === "file")!;
        const sourceOf = (name: string) => shaderOf(document, name)?.source;
        const replace = (name: string) => {
            session.set(name, fileField, file);
            session.select(name);
            return `${file} is the picture of ${name}.`;
        };
        const slotName = at?.closest<HTMLElement>("[data-slot]")?.dataset["slot"];
        const shader = shaderOf(document, into);
        const all = shader === undefined ? [] : slots(shader, session.tableOf);
        const plugged = (source: string) => {
            // In the order of the graph: what its author thought of first is seen most.
            const name = Object.keys(document.shaders).find(
                (each) => sourceOf(each) === source && all.some((slot) => slot.shader === each),
            );
            return all.find((slot) => slot.shader !== null && slot.shader === name);
        };
        let slot = all.find((each) => each.field.name === slotName);
        if (slot === undefined) {
            if (sourceOf(into) === "picture" && !isAnother) return replace(into);
            const waiting = Object.keys(document.shaders).find(
                (name) => sourceOf(name) === "picture" && shaderOf(document, name)!["file"] === file,
            );
            if (waiting !== undefined) return `${file} is the picture of ${waiting}.`;
            slot = plugged("color");
            const other = slot === undefined && !isAnother ? plugged("picture") : undefined;
            if (other !== undefined) return replace(other.shader!);
            slot ??= all.find((each) => each.shader === null);
        }
        if (slot === undefined)
            throw new Error(
                `There is no place for ${file}: drop it on a slot, or select a shader that has one.`,
            );
        const { document: wider, added } = withNewShader(document, into, slot.field, table);
        session.edit(withField(wider, added, fileField, file));
        session.select(added);
        return `${file} is plugged into ${slot.field.label} of ${into}.`;
    }

    #changed(): void {
        // Not disabled, which would take the focus from who undoes by the keyboard.
        this.#undo.ariaDisabled = String(!this.session.canUndo);
        this.#redo.ariaDisabled = String(!this.session.canRedo);
        void giveFiles(this.#engine, this.session.document).catch((error: Error) => tell(error.message));
        clearTimeout(this.#linkTimer);
        if (this.session.changed || this.#isInAddress)
            this.#linkTimer = window.setTimeout(() => void this.keep(), 500);
    }

    /** A changed graph goes into the address, so that it outlives a reload. */
    async keep(): Promise<void> {
        if (this.session.changed || this.#isInAddress) await this.#intoAddress();
    }

    /** To the wall, with the last edit in the address that Back returns to. */
    async #leave(event: MouseEvent): Promise<void> {
        if (event.ctrlKey || event.metaKey || event.shiftKey) return;
        event.preventDefault();
        await this.keep();
        location.hash = "";
    }

    /** The link; nothing where the graph is too large for one. */
    async #intoAddress(): Promise<string | undefined> {
        const { document: graph, title, view } = this.session;
        const hash = await toHash({ graph, title, view: JSON.stringify(view) });
        if (hash === undefined || this.#closed) return undefined;
        history.replaceState(null, "", hash);
        this.#isInAddress = true;
        return new URL(hash, location.href).href;
    }

    async #share(): Promise<void> {
        const link = await this.#intoAddress();
        if (link === undefined) {
            tell("The graph is too large for a link. Download saves it as a file.");
            return;
        }
        await navigator.clipboard.writeText(link).then(
            () => tell("The link is copied. It holds the whole graph."),
            () => tell("The link is in the address bar. It holds the whole graph."),
        );
    }

    #take(): void {
        showDialog(takeDialog(this.session, this.stage));
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
