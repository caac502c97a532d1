// The first picture of a class's page comes to life, where the page of shaders lies above this guide.
(function () {
    const app = new URL("../../app/", document.currentScript.src);
    if (!/\/reference\/\w+\.html$/.test(location.pathname)) return;
    const style = document.createElement("link");
    style.rel = "stylesheet";
    style.href = new URL("live.css", app);
    document.head.append(style);
    import(new URL("live.js", app)).catch(() => style.remove());
})();
