// The head of the selected shader: its name, what it is, and what can be done with the whole of it.

import { h, tell } from "./dom";
import type { ShaderTable } from "./engine";
import { shaderOf, tableName } from "./graph";
import type { Session } from "./session";

function nameEntry(session: Session, name: string): HTMLInputElement {
    const entry = h("input", {
        type: "text",
        class: "shader-name",
        "aria-label": "Name of the shader",
        title: "Type another name",
        spellcheck: "false",
        autocomplete: "off",
        maxlength: 255,
        value: name,
    });
    entry.addEventListener("change", () => {
        const wanted = entry.value.trim();
        if (wanted === name) entry.value = name;
        else if (wanted === "" || shaderOf(session.document, wanted) !== undefined) {
            entry.value = name;
            tell(wanted === "" ? "A shader needs a name." : `There is a shader named “${wanted}” already.`);
        } else session.rename(name, wanted);
    });
    entry.addEventListener("keydown", (event) => {
        if (event.key === "Escape") entry.value = name;
    });
    return entry;
}

function action(text: string, onclick: () => void): HTMLButtonElement {
    return h("button", { type: "button", onclick }, text);
}

/** Of a shader that there is no table for: another class or source for it. */
function kinds(session: Session, name: string): HTMLSelectElement {
    const group = (label: string, tables: readonly ShaderTable[]) =>
        h("optgroup", { label }, ...tables.map((table) => h("option", { value: table.name }, table.name)));
    const menu = h(
        "select",
        { "aria-label": "Another class or source" },
        h("option", { value: "" }, "Take another class or source"),
        group("Sources", session.engine.sources),
        group("Classes", session.engine.classes),
    );
    menu.addEventListener("change", () => session.turnInto(name, menu.value));
    return menu;
}

/** Buttons for the whole of a shader: to show it alone, to take it out. */
function actionsOf(session: Session, name: string): HTMLElement | undefined {
    if (name === session.document.output) return undefined;
    return h(
        "div",
        { class: "actions" },
        action("Make it the picture", () => session.makeOutput(name)),
        action("Remove from the graph", () => session.remove(name)),
    );
}

export function headOf(session: Session, name: string, table: ShaderTable | undefined): HTMLElement {
    const shader = shaderOf(session.document, name);
    if (shader === undefined)
        return h("header", {}, h("p", { class: "purpose" }, "There is no such shader."));
    const what =
        table === undefined
            ? [`There is no class or source “${tableName(shader)}”.`]
            : [h("strong", {}, table.name), " ", table.purpose];
    return h(
        "header",
        {},
        h("h2", { class: "unseen" }, name),
        nameEntry(session, name),
        h("p", { class: "purpose" }, ...what),
        table === undefined && kinds(session, name),
        actionsOf(session, name),
    );
}
