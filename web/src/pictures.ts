// Pictures from outside: checked, decoded and given to the engine.

import { kForPixels } from "./dom";
import type { Engine, GivenPicture } from "./engine";

export const kPictureKinds = "image/png,image/jpeg,image/webp,image/avif,image/gif,image/bmp";
export const kPictureNames = "PNG, JPEG, WebP, AVIF, GIF, BMP";

const kLargestFile = 64 << 20; // bytes
const kMostPixels = 64e6;

/** The pixels of a picture file as they are, straight alpha. Rejects with a sentence for the reader. */
export async function decodePicture(blob: Blob, name: string): Promise<GivenPicture> {
    if (blob.size > kLargestFile) throw new Error(`${name} is larger than 64 MB.`);
    let bitmap: ImageBitmap;
    try {
        bitmap = await createImageBitmap(blob, { premultiplyAlpha: "none", colorSpaceConversion: "none" });
    } catch {
        throw new Error(`${name} is no picture that this browser can read. It takes ${kPictureNames}.`);
    }
    try {
        const { width, height } = bitmap;
        if (width * height > kMostPixels) throw new Error(`${name} has more than 64 million pixels.`);
        return { width, height, pixels: pixelsOf(bitmap) };
    } finally {
        bitmap.close();
    }
}

/** A 2D canvas would multiply the colours by the alpha and lose them where it is small; WebGL hands them back as they are. */
function pixelsOf(bitmap: ImageBitmap): Uint8Array | Uint8ClampedArray {
    const { width, height } = bitmap;
    const canvas = new OffscreenCanvas(1, 1);
    const gl = canvas.getContext("webgl2");
    if (gl !== null && Math.max(width, height) <= gl.getParameter(gl.MAX_TEXTURE_SIZE)) {
        const texture = gl.createTexture();
        gl.bindTexture(gl.TEXTURE_2D, texture);
        gl.pixelStorei(gl.UNPACK_COLORSPACE_CONVERSION_WEBGL, gl.NONE);
        gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA8, gl.RGBA, gl.UNSIGNED_BYTE, bitmap);
        const frame = gl.createFramebuffer();
        gl.bindFramebuffer(gl.FRAMEBUFFER, frame);
        gl.framebufferTexture2D(gl.FRAMEBUFFER, gl.COLOR_ATTACHMENT0, gl.TEXTURE_2D, texture, 0);
        const pixels = new Uint8Array(width * height * 4);
        gl.readPixels(0, 0, width, height, gl.RGBA, gl.UNSIGNED_BYTE, pixels);
        const failed = gl.getError() !== gl.NO_ERROR;
        gl.getExtension("WEBGL_lose_context")?.loseContext();
        if (!failed) return pixels;
    }
    const plain = new OffscreenCanvas(width, height).getContext("2d", kForPixels)!;
    plain.drawImage(bitmap, 0, 0);
    return plain.getImageData(0, 0, width, height).data;
}

/** Makes a picture known to graphs by the name of its file. */
export async function givePicture(engine: Engine, file: File): Promise<void> {
    engine.givePicture(file.name, await decodePicture(file, file.name));
}
