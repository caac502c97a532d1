// Files of the reader's own, dropped or chosen: of what kind each is, and how large it may be.

import { h, icon } from "./dom";
import { kPictureKinds, kPictureNames } from "./pictures";

/** A part is what a model of several files names beside itself. */
export type Kind = "graph" | "picture" | "model" | "part" | "unknown";

const kEndings: readonly (readonly [Kind, RegExp])[] = [
    ["graph", /\.json$/i],
    ["model", /\.(gltf|glb|obj)$/i],
    ["part", /\.(bin|mtl)$/i],
    ["picture", /\.(png|jpe?g|webp|avif|gif|bmp|svg|tiff?)$/i],
];
const kLargestGraph = 4 << 20; // bytes, as the engine takes them
export const kLargestModel = 128 << 20; // bytes
const kSlow = 200_000; // bytes, from where reading may be felt
export const kTaken = `graphs (JSON), pictures (${kPictureNames}) and models (glTF with its files, GLB, OBJ)`;

export function kindOfFile({ name, type }: File): Kind {
    return (
        kEndings.find(([, ending]) => ending.test(name))?.[0] ??
        (type.startsWith("image/") ? "picture" : "unknown")
    );
}

/** Throws a sentence for the reader, before anything is read. */
export function requireSize(file: File): void {
    const kind = kindOfFile(file);
    if (kind === "graph" && file.size > kLargestGraph)
        throw new Error(`${file.name} is larger than 4 MiB, more than a graph may be.`);
    if ((kind === "model" || kind === "part") && file.size > kLargestModel)
        throw new Error(`${file.name} is larger than 128 MB.`);
}

export function isSlow(file: File): boolean {
    return file.size > kSlow;
}

/** A button that lets the reader choose files; `isSmall` shows its icon alone. */
export function openButton(take: (files: readonly File[]) => void, isSmall = false): HTMLElement {
    const label = "Open graphs, pictures or models";
    const input = h("input", {
        type: "file",
        multiple: true,
        accept: `.json,.gltf,.glb,.bin,.obj,${kPictureKinds}`,
        class: "unseen",
        tabindex: -1,
        "aria-label": label,
    });
    input.addEventListener("change", () => {
        const files = [...(input.files ?? [])];
        input.value = "";
        take(files);
    });
    return h(
        "span",
        { class: "open-files" },
        h(
            "button",
            {
                type: "button",
                title: label,
                onclick: () => input.click(),
                ...(isSmall ? { class: "icon-button", "aria-label": label } : {}),
            },
            icon("folder"),
            !isSmall && "Open",
        ),
        input,
    );
}
