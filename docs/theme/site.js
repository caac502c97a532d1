// The first picture of a class's page comes to life, where the page of shaders lies above this guide.
(function () {
    const app = new URL("../app/", document.currentScript.src);
    if (!/\/reference\/\w+\.html$/.test(location.pathname)) return;
    const style = document.createElement("link");
    style.rel = "stylesheet";
    style.href = new URL("live.css", app);
    document.head.append(style);
    import(new URL("live.js", app)).catch(() => style.remove());
})();

// The menu shows where one is, and closes over the text that one has chosen.
(function () {
    const menu = document.querySelector(".guide-menu");
    const here = menu.querySelector('[aria-current="page"]');
    if (here?.offsetTop > menu.clientHeight / 2) menu.scrollTop = here.offsetTop - menu.clientHeight / 2;
    addEventListener("hashchange", () => menu.matches(":popover-open") && menu.hidePopover());
})();

// A default that would fill its cell with a column of values is folded.
(function () {
    for (const code of document.querySelectorAll('[data-folder="docs/reference"] td:nth-child(3) code')) {
        if (code.textContent.length < 60) continue;
        const folded = document.createElement("details");
        const summary = document.createElement("summary");
        summary.textContent = `${code.textContent.match(/[^[\], ]+/g).length} values`;
        code.replaceWith(folded);
        folded.append(summary, code);
    }
})();
