// Switches, menus and texts.

import { h } from "../dom";
import type { Field } from "../engine";
import type { Changed, Control } from "./control";

export function switchControl(label: string, changed: Changed): Control {
    const input = h("input", { type: "checkbox", role: "switch", "aria-label": label });
    input.addEventListener("change", () => changed(input.checked));
    return { element: input, show: (value) => (input.checked = value === true) };
}

/** Two or three short choices lie side by side, more are a menu. */
export function choiceControl(field: Field, label: string, changed: Changed): Control {
    const choices = field.choices ?? [];
    const letters = choices.reduce((sum, choice) => sum + choice.label.length, 0);
    if (choices.length <= 3 && letters <= 26) {
        const name = `choice-${field.name}-${crypto.randomUUID()}`;
        const inputs = choices.map((choice) => {
            const input = h("input", { type: "radio", name, "aria-label": choice.label });
            input.addEventListener("change", () => changed(choice.value));
            return input;
        });
        const element = h(
            "div",
            { class: "segments", role: "radiogroup", "aria-label": label },
            ...choices.map((choice, i) => h("label", {}, inputs[i]!, h("span", {}, choice.label))),
        );
        return {
            element,
            show: (value) => inputs.forEach((input, i) => (input.checked = choices[i]!.value === value)),
        };
    }
    const menu = h(
        "select",
        { "aria-label": label },
        ...choices.map((choice, i) => h("option", { value: String(i) }, choice.label)),
    );
    menu.addEventListener("change", () => changed(choices[Number(menu.value)]?.value));
    return {
        element: menu,
        show: (value) => (menu.selectedIndex = choices.findIndex((choice) => choice.value === value)),
    };
}

export function textControl(label: string, changed: Changed, suggestions: readonly string[] = []): Control {
    const id = `names-${crypto.randomUUID()}`;
    const input = h("input", {
        type: "text",
        spellcheck: "false",
        autocomplete: "off",
        "aria-label": label,
        maxlength: 255,
        list: suggestions.length > 0 ? id : null,
    });
    const names =
        suggestions.length > 0 &&
        h("datalist", { id }, ...suggestions.map((name) => h("option", { value: name })));
    input.addEventListener("change", () => changed(input.value));
    return {
        element: h("div", { class: "text" }, input, names),
        show: (value) => {
            if (document.activeElement !== input) input.value = typeof value === "string" ? value : "";
        },
    };
}

/** Shows what the shader derives. */
export function derivedControl(): Control {
    const element = h("output", { class: "derived" });
    return { element, show: (value) => (element.textContent = value === null ? "" : JSON.stringify(value)) };
}
