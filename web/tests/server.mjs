// The built site, as a plain server of static files has it.

import { createReadStream, existsSync, statSync } from "node:fs";
import { createServer } from "node:http";
import { extname, join, normalize } from "node:path";
import { fileURLToPath } from "node:url";

export const kRoot = fileURLToPath(new URL("../..", import.meta.url));
export const kSite = process.env.FERNWICK_SITE ?? join(kRoot, "build/site");

const kTypes = {
    ".html": "text/html",
    ".js": "text/javascript",
    ".css": "text/css",
    ".wasm": "application/wasm",
    ".json": "application/json",
    ".png": "image/png",
    ".svg": "image/svg+xml",
    ".webmanifest": "application/manifest+json",
};

/** A plain server of static files on a port of the loopback address that is free. */
export function serve(folder = kSite, port = 0) {
    const asked = [];
    const server = createServer((request, response) => {
        const path = normalize(decodeURIComponent(new URL(request.url, "http://localhost").pathname));
        asked.push(path);
        let file = join(folder, path);
        if (existsSync(file) && statSync(file).isDirectory()) file = join(file, "index.html");
        if (!file.startsWith(folder) || !existsSync(file)) {
            response.writeHead(404).end();
            return;
        }
        response.writeHead(200, { "content-type": kTypes[extname(file)] ?? "application/octet-stream" });
        createReadStream(file).pipe(response);
    });
    return new Promise((ready) =>
        server.listen(port, "127.0.0.1", () =>
            ready({
                address: `http://127.0.0.1:${server.address().port}/`,
                asked,
                close: () => new Promise((done) => (server.closeAllConnections(), server.close(done))),
            }),
        ),
    );
}
