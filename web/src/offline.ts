// The service worker: the page is kept whole at the first visit, so that it works without a network afterwards.

declare const FILES: readonly string[];
declare const VERSION: string;
declare const self: ServiceWorkerGlobalScope;

const kCache = `fernwick ${VERSION}`;

// A newer one waits until no page of the older is open: that one still needs its own files.
self.addEventListener("install", (event) => {
    event.waitUntil(
        caches
            .open(kCache)
            .then((cache) =>
                cache.addAll(["./", ...FILES].map((file) => new Request(file, { cache: "no-cache" }))),
            ),
    );
});

self.addEventListener("activate", (event) => {
    event.waitUntil(
        caches
            .keys()
            .then((names) =>
                Promise.all(
                    names
                        .filter((name) => name.startsWith("fernwick ") && name !== kCache)
                        .map((name) => caches.delete(name)),
                ),
            )
            .then(() => self.clients.claim()),
    );
});

// The guide beside the page comes from the network; what was read of it stays too.
self.addEventListener("fetch", (event) => {
    const { request } = event;
    if (request.method !== "GET" || new URL(request.url).origin !== self.location.origin) return;
    event.respondWith(
        (async () => {
            const cache = await caches.open(kCache);
            const kept = await cache.match(request, { ignoreSearch: true });
            const isPage = !new URL(request.url).pathname.includes("/guide/");
            if (kept !== undefined && isPage) return kept;
            try {
                const response = await fetch(request);
                if (response.ok) void cache.put(request, response.clone());
                return response;
            } catch (error) {
                if (kept !== undefined) return kept;
                throw error;
            }
        })(),
    );
});

export {};
