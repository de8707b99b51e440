// Pixels as a file that browsers show.
import type { Pixels } from './protocol';

export async function blobOf(pixels: Pixels, type = 'image/png'): Promise<Blob> {
    const canvas = new OffscreenCanvas(pixels.width, pixels.height);
    canvas.getContext('2d')?.putImageData(new ImageData(pixels.rgba, pixels.width, pixels.height), 0, 0);
    return canvas.convertToBlob({ type, quality: 0.85 });
}
