// Shows the built site until Ctrl-C: `node web/tests/serve.mjs [PORT]`.

import { serve } from "./server.mjs";

const { address } = await serve(undefined, Number(process.argv[2] ?? 8000));
console.log(`The site is at ${address}`);
