// A graph from nothing: one shader of a class that the reader chooses.

import { h, icon } from "./dom";
import type { Engine, GraphDocument, Shape } from "./engine";
import { engine } from "./load";
import type { View } from "./session";

/** What classes that look at the scene need to show something. Names are those of the engine's scene around a shape. */
const kStarts: { [name: string]: { fields?: { [field: string]: unknown }; on: Shape } } = {
    Iridescent: { on: "sphere" },
    Fresnel: { on: "sphere" },
    Corners: { on: "torus" },
    Location: {
        on: "sphere",
        fields: { "fAxes[1].fEnabled": true, "fAxes[1].fEdgeA": -2, "fAxes[1].fEdgeB": 2 },
    },
    Proximity: { on: "sphere", fields: { fTargetName: "Target", fMaxDistance: 4 } },
    Lit: { on: "sphere", fields: { fLightName: "Lamp", fAngleRange: [0, 1.5708] } },
    Translucent: {
        on: "sphere",
        fields: { fCameraName: "Camera", fLightName: "Lamp", fAngleRange: [0.8, 1.7] },
    },
    Curvature: { on: "torus", fields: { fObjectName: "Camera", fSurfaceName: "Shape" } },
};

/** A graph of one shader, and the view that shows most of it. */
export function startOf(from: Engine, name: string): { document: GraphDocument; ground: View["ground"] } {
    const start = kStarts[name];
    const output = name.toLowerCase();
    const document = { shaders: { [output]: { class: name, ...start?.fields } }, output };
    if (start === undefined) return { document, ground: "square" };
    const surface = { kind: "shape", shape: start.on } as const;
    return {
        document: from.documentOf({ graph: document, width: 1, height: 1, surface }),
        ground: "scene",
    };
}

/** Asks for a class. The engine tells which there are, so that they come when it is there. */
export function startDialog(chosen: (from: Engine, name: string) => void): HTMLDialogElement {
    const list = h("ul", { class: "starts" }, h("li", { class: "none" }, "The engine is being loaded …"));
    const dialog = h(
        "dialog",
        { class: "take start", "aria-label": "A new graph" },
        h("h2", {}, "A new graph of one shader"),
        h(
            "button",
            {
                type: "button",
                class: "icon-button close",
                "aria-label": "Close",
                onclick: () => dialog.close(),
            },
            icon("close"),
        ),
        list,
    );
    engine().then(
        (ready) =>
            list.replaceChildren(
                ...ready.classes.map(({ name, purpose }) => {
                    const choose = () => {
                        dialog.close();
                        chosen(ready, name);
                    };
                    return h(
                        "li",
                        {},
                        h(
                            "button",
                            { type: "button", onclick: choose },
                            h("strong", {}, name),
                            h("span", {}, purpose),
                        ),
                    );
                }),
            ),
        (error: Error) => list.replaceChildren(h("li", { class: "none" }, error.message)),
    );
    return dialog;
}
