// A picture of one's own, in place of the one that a source names.

import { h, icon, tell } from "../dom";
import type { Field } from "../engine";
import { isOwn } from "../load";
import { givePicture, kPictureKinds } from "../pictures";
import type { Session } from "../session";
import type { Control } from "./control";

export function fileControl(session: Session, name: string, field: Field, label: string): Control {
    const input = h("input", {
        type: "file",
        accept: kPictureKinds,
        class: "unseen",
        tabindex: -1,
        "aria-label": `${label}: choose a picture`,
    });
    const shown = h("span", { class: "file-name" });
    const choose = h(
        "button",
        { type: "button", class: "wide", onclick: () => input.click() },
        icon("picture"),
        "Choose a picture",
    );
    input.addEventListener("change", () => {
        const file = input.files?.[0];
        input.value = "";
        if (file !== undefined)
            givePicture(session.engine, file).then(
                () => {
                    isOwn(file.name);
                    session.set(name, field, file.name);
                },
                (error: Error) => tell(error.message),
            );
    });
    return {
        element: h("div", { class: "file" }, shown, choose, input),
        show: (value) =>
            (shown.textContent = typeof value === "string" && value !== "" ? value : "No picture yet"),
    };
}
