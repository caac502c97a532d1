// The keys of a field: a button that sets one and takes it away, and below the field where they are.

import { h } from "../dom";
import type { Field } from "../engine";
import { given, isKeyed, isStepped, shaderOf, type Between, type Keyed } from "../graph";
import type { Session } from "../session";

export interface Keys {
    /** A diamond, filled at a key. */
    readonly button: HTMLButtonElement;
    /** The frames of the keys, and what lies between them. */
    readonly line: HTMLElement;
    /** Shows what stands in the document. */
    show(): void;
}

const kBetween: { readonly [between in Between]: string } = {
    linear: "straight",
    smooth: "smooth",
    step: "in steps",
};

export function keysOf(session: Session, name: string, field: Field, label: string): Keys {
    const button = h("button", {
        type: "button",
        class: "key",
        onclick: () => session.toggleKey(name, field),
    });
    const between = h(
        "select",
        { "aria-label": `${label}, between keys` },
        ...Object.entries(kBetween).map(([value, text]) => h("option", { value }, text)),
    );
    between.addEventListener("change", () => session.setBetween(name, field, between.value as Between));
    const frames = h("span", { class: "key-frames" });
    const steps = h(
        "span",
        { class: "key-steps" },
        field.type === "int32" ? "whole numbers: in steps" : "in steps",
    );
    const line = h(
        "div",
        { class: "keys", role: "group", "aria-label": `${label}, keys`, hidden: true },
        frames,
        between,
        steps,
    );

    let drawn = "";
    const draw = (curve: Keyed) => {
        const order = curve.keys.map(([frame]) => frame);
        if (JSON.stringify(order) !== drawn) {
            drawn = JSON.stringify(order);
            const button = (frame: number) =>
                h(
                    "button",
                    { type: "button", "aria-label": `To frame ${frame}`, onclick: () => session.goTo(frame) },
                    String(frame),
                );
            frames.replaceChildren(...order.map(button));
        }
        order.forEach((frame, i) =>
            frames.children[i]!.setAttribute("aria-current", String(frame === session.frame)),
        );
        between.hidden = isStepped(field) || order.length < 2;
        steps.hidden = !isStepped(field) || order.length < 2;
        between.value = curve.between ?? "linear";
    };
    return {
        button,
        line,
        show: () => {
            const shader = shaderOf(session.document, name);
            const stands = shader && given(shader, field.name);
            const curve = isKeyed(stands) ? stands : undefined;
            const isHere = curve?.keys.some(([frame]) => frame === session.frame) ?? false;
            const does = isHere ? "Take the key away" : "Set a key";
            button.hidden = session.frames === undefined;
            button.title = `${does} at frame ${session.frame}`;
            button.setAttribute("aria-label", `${label}: ${button.title.toLowerCase()}`);
            button.setAttribute("aria-pressed", String(isHere));
            line.hidden = curve === undefined;
            if (curve !== undefined) draw(curve);
        },
    };
}
