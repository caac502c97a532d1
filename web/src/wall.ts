// All examples on one wall.

import { kTopics, pictureOf, type Example } from "./catalog";
import { h, icon } from "./dom";
import { openButton } from "./files";

function card(example: Example): HTMLElement {
    return h(
        "li",
        {
            class: "card",
            "data-words": [example.title, example.graph, ...example.classes].join(" ").toLowerCase(),
        },
        h(
            "a",
            { href: `#example=${example.graph}` },
            h("img", {
                src: pictureOf(example),
                alt: example.shows,
                loading: "lazy",
                decoding: "async",
                width: 384,
                height: 384,
            }),
            h("span", { class: "card-title" }, example.title),
            h("span", { class: "card-classes" }, example.classes.join(", ") || "sources"),
        ),
    );
}

/**
 * @param take  takes files that were chosen
 * @param start asks for the class of a new graph
 */
export function wall(take: (files: readonly File[]) => void, start: () => void): HTMLElement {
    const search = h("input", {
        type: "search",
        placeholder: "Weave, Fresnel, cloth …",
        "aria-label": "Find examples",
        spellcheck: "false",
    });
    const none = h("p", { class: "none", hidden: true }, "No example has this name.");
    const sections = kTopics.map((topic) => {
        const id = `topic-${topic.topic.toLowerCase().replaceAll(" ", "-")}`;
        return h(
            "section",
            { "aria-labelledby": id },
            h("h2", { id }, topic.topic),
            h("ul", { class: "cards" }, ...topic.examples.map(card)),
        );
    });
    search.addEventListener("input", () => {
        const words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
        let any = false;
        for (const section of sections) {
            let shown = false;
            for (const item of section.querySelectorAll<HTMLElement>(".card")) {
                item.hidden = !words.every((word) => item.dataset["words"]!.includes(word));
                shown ||= !item.hidden;
            }
            section.hidden = !shown;
            any ||= shown;
        }
        none.hidden = any;
    });
    return h(
        "main",
        { class: "wall" },
        h(
            "header",
            { class: "wall-head" },
            h("h1", {}, "Fernwick shaders"),
            h(
                "p",
                {},
                "Nineteen shaders for cloth, light, water and colour. Open a picture, move a slider, and take what you made with you. All of it is computed here, in your browser.",
            ),
            h(
                "div",
                { class: "wall-tools" },
                search,
                h("button", { type: "button", title: "A new graph", onclick: start }, icon("plus"), "New"),
                openButton(take),
                h("a", { href: "guide/docs/start.html" }, "Start here"),
                h("a", { href: "guide/docs/reference/index.html" }, "Reference"),
            ),
        ),
        none,
        ...sections,
        h(
            "footer",
            {},
            h(
                "p",
                {},
                "Graphs, pictures or models of your own? Drop them anywhere, or choose them with Open. Nothing of them leaves this computer.",
            ),
        ),
    );
}
