// Elements in one call, and nothing more.

type Child = Node | string | null | undefined | false;
type Attributes = { [name: string]: string | number | boolean | null | undefined | ((event: never) => void) };

/**
 * Makes an element. Attributes that are false, null or undefined are left out, true ones are empty; a function listens to
 * the event of its name ("onclick" or "click" alike). Text is always text, never markup.
 */
export function h<Tag extends keyof HTMLElementTagNameMap>(
    tag: Tag,
    attributes: Attributes = {},
    ...children: Child[]
): HTMLElementTagNameMap[Tag] {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        if (typeof value === "function")
            element.addEventListener(name.replace(/^on/, ""), value as unknown as EventListener);
        else if (value === true) element.setAttribute(name, "");
        else if (value !== false && value !== null && value !== undefined)
            element.setAttribute(name, String(value));
    }
    element.append(
        ...children.filter(
            (child): child is Node | string => child instanceof Node || typeof child === "string",
        ),
    );
    return element;
}

const kIcons = {
    undo: "M9 7H4V2M4 7c3-4 9-5 13-1s3 10-1 13-8 2-10 0",
    redo: "M15 7h5V2M20 7c-3-4-9-5-13-1S4 16 8 19s8 2 10 0",
    link: "M10 14l4-4M8 11l-3 3a4 4 0 0 0 5 5l3-3M16 13l3-3a4 4 0 0 0-5-5l-3 3",
    download: "M12 3v12M7 11l5 5 5-5M4 20h16",
    play: "M7 4l13 8-13 8z",
    pause: "M8 4v16M16 4v16",
    back: "M15 4l-8 8 8 8",
    open: "M9 4l8 8-8 8",
    picture: "M3 5h18v14H3zM3 16l5-5 4 4 3-3 6 6M15.5 9.5h.01",
    close: "M5 5l14 14M19 5L5 19",
    plus: "M12 4v16M4 12h16",
    folder: "M3 19V5h6l2 3h10v11z",
};

/** A line drawing of 24 units in the colour of the text; decoration only. */
export function icon(name: keyof typeof kIcons): SVGSVGElement {
    const svg = document.createElementNS("http://www.w3.org/2000/svg", "svg");
    svg.setAttribute("viewBox", "0 0 24 24");
    svg.setAttribute("aria-hidden", "true");
    svg.setAttribute("class", "icon");
    const path = document.createElementNS("http://www.w3.org/2000/svg", "path");
    path.setAttribute("d", kIcons[name]);
    svg.append(path);
    return svg;
}

/** Of a canvas for pixels of the processor's memory: kept there, they wait for no graphics card on their way. */
export const kForPixels: CanvasRenderingContext2DSettings = { willReadFrequently: true };

/** Shows a dialog over all else until it is closed, which a click beside it does too. */
export function showDialog(dialog: HTMLDialogElement): void {
    dialog.addEventListener("click", (event) => event.target === dialog && dialog.close());
    dialog.addEventListener("close", () => dialog.remove());
    document.body.append(dialog);
    dialog.showModal();
}

/** Told to screen readers, and shown for as long as it takes to read it. */
export function tell(message: string, milliseconds = Math.max(4000, 70 * message.length)): void {
    const place = document.getElementById("told");
    if (place === null) return;
    place.textContent = message;
    place.classList.add("shown");
    clearTimeout(Number(place.dataset["timer"]));
    const after = (wait: number, work: () => void) =>
        (place.dataset["timer"] = String(setTimeout(work, wait)));
    after(milliseconds, () => {
        place.classList.remove("shown");
        after(300, () => place.replaceChildren()); // once it has faded
    });
}

/** Resolves when what was told is on the screen, so that work may hold the page up. */
export function painted(): Promise<void> {
    return new Promise((done) => {
        requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(done)));
        setTimeout(done, 500); // a page in the background paints nothing
    });
}
