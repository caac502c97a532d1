// The graph as a tree: each slot with what is plugged into it. What hangs in several places is shown open in the first.

import { h } from "./dom";
import { below, hasKeys, shaderAt, shaderOf, slots } from "./graph";
import { kindOf, type Session } from "./session";

interface Row {
    name: string;
    slot: string;
    depth: number;
    /** Shown further up already. */
    again: boolean;
    open: boolean;
    branches: boolean;
    keyed: boolean;
}

/** Trees of more rows begin with all but the first level closed. */
const kManyRows = 24;

export class Tree {
    readonly element = h("div", { role: "tree", class: "tree", "aria-label": "Graph" });
    readonly #session: Session;
    readonly #closed = new Map<string, boolean>();
    #rows: Row[] = [];
    #drawn = "";

    constructor(session: Session) {
        this.#session = session;
        for (const event of ["document", "selection", "check"])
            session.addEventListener(event, () => this.#draw());
        this.element.addEventListener("keydown", (event) => this.#key(event));
        const plugs = below(session.document, session.document.output, session.tableOf).size;
        if (plugs > kManyRows)
            for (const name of Object.keys(session.document.shaders))
                this.#closed.set(name, name !== session.document.output);
        this.#draw();
    }

    #collect(): Row[] {
        const { document, tableOf } = this.#session;
        const rows: Row[] = [];
        const seen = new Set<string>();
        const add = (name: string, slot: string, depth: number) => {
            const shader = shaderOf(document, name);
            if (shader === undefined || depth > 64) return;
            const plugged = slots(shader, tableOf).filter((each) => each.shader !== null);
            const again = seen.has(name);
            const open = !again && this.#closed.get(name) !== true;
            const branches = plugged.length > 0 && !again;
            rows.push({ name, slot, depth, again, open, branches, keyed: hasKeys(shader) });
            seen.add(name);
            if (open) for (const each of plugged) add(each.shader!, each.field.label, depth + 1);
        };
        // Elements, nodes and materials of the scene name the shaders that they wear.
        const scene = JSON.stringify(document.scene ?? null);
        const inScene = (name: string) => scene.includes(JSON.stringify(name));
        add(document.output, "", 0);
        const hanging = below(document, document.output, tableOf);
        for (const name of Object.keys(document.shaders))
            if (!hanging.has(name) && !seen.has(name))
                add(name, inScene(name) ? "in the scene" : "not plugged in", 0);
        return rows;
    }

    #draw(): void {
        this.#rows = this.#collect();
        const selected = this.#session.selected;
        const wrong = shaderAt(this.#session.problem?.pointer);
        const kinds = this.#rows.map((row) => kindOf(this.#session, row.name));
        const drawn = JSON.stringify([this.#rows, selected, wrong, kinds]);
        if (drawn === this.#drawn) return;
        this.#drawn = drawn;
        const hadFocus = this.element.contains(document.activeElement);
        let current = this.#rows.findIndex((row) => row.name === selected && !row.again);
        if (current < 0) current = this.#rows.findIndex((row) => row.name === selected);
        const items = this.#rows.map((row, i) => {
            const kind = kinds[i]!;
            const item = h(
                "div",
                {
                    role: "treeitem",
                    class: "tree-row" + (row.name === wrong ? " wrong" : ""),
                    "aria-level": row.depth + 1,
                    "aria-selected": String(i === current),
                    "aria-expanded": row.branches ? String(row.open) : null,
                    tabindex: i === Math.max(0, current) ? 0 : -1,
                    style: `--depth: ${row.depth}`,
                    onclick: () => this.#session.select(row.name),
                },
                h(
                    "span",
                    {
                        class: "twig",
                        "aria-hidden": "true",
                        onclick: (event: Event) =>
                            row.branches && (event.stopPropagation(), this.#toggle(row)),
                    },
                    row.branches ? (row.open ? "▾" : "▸") : "",
                ),
                h("span", { class: "tree-name" }, row.name),
                h("span", { class: "tree-kind" }, row.again ? "as above" : kind),
                row.keyed &&
                    h("span", { class: "tree-keys", title: "with keys", "aria-hidden": "true" }, "◆"),
                row.keyed && h("span", { class: "unseen" }, "with keys"),
                h("span", { class: "tree-slot" }, row.slot),
                row.name === wrong && h("span", { class: "unseen" }, "has an error"),
            );
            return item;
        });
        this.element.replaceChildren(...items);
        if (hadFocus) items[Math.max(0, current)]?.focus();
    }

    #toggle(row: Row): void {
        this.#closed.set(row.name, row.open);
        this.#draw();
    }

    #key(event: KeyboardEvent): void {
        const items = [...this.element.children] as HTMLElement[];
        const at = items.indexOf(document.activeElement as HTMLElement);
        const row = this.#rows[at];
        if (row === undefined) return;
        const go = (to: number) => items[to] && this.#focus(items, to);
        if (event.key === "ArrowDown") go(at + 1);
        else if (event.key === "ArrowUp") go(at - 1);
        else if (event.key === "Home") go(0);
        else if (event.key === "End") go(items.length - 1);
        else if (event.key === "ArrowRight" && row.branches) row.open ? go(at + 1) : this.#toggle(row);
        else if (event.key === "ArrowLeft" && row.branches && row.open) this.#toggle(row);
        else if (event.key === "ArrowLeft") {
            for (let i = at - 1; i >= 0; --i)
                if (this.#rows[i]!.depth < row.depth) {
                    go(i);
                    break;
                }
        } else if (event.key === "Enter" || event.key === " ") this.#session.select(row.name);
        else if (event.key === "Delete" && row.name !== this.#session.document.output)
            this.#session.remove(row.name);
        else return;
        event.preventDefault();
    }

    #focus(items: HTMLElement[], to: number): void {
        for (const item of items) item.tabIndex = -1;
        items[to]!.tabIndex = 0;
        items[to]!.focus();
        this.#session.select(this.#rows[to]!.name);
    }
}
