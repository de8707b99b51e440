// Frames played on a canvas, or one of them held still.
import { useEffect, useRef } from 'preact/hooks';
import type { Pixels } from '../engine/protocol';
import type { Film } from '../state/previews';

const stillMotion = matchMedia('(prefers-reduced-motion: reduce)');
export const prefersStillness = (): boolean => stillMotion.matches;

export function drawPixels(canvas: HTMLCanvasElement, pixels: Pixels): void {
    if (canvas.width !== pixels.width) canvas.width = pixels.width;
    if (canvas.height !== pixels.height) canvas.height = pixels.height;
    canvas.getContext('2d')?.putImageData(new ImageData(pixels.rgba, pixels.width, pixels.height), 0, 0);
}

/** The frame that is seen after `hundredths` of an endless loop. */
function frameAt(film: Film, hundredths: number): number {
    const length = film.delays.reduce((sum, delay) => sum + Math.max(delay, 1), 0);
    let left = hundredths % length;
    for (const [index, delay] of film.delays.entries()) {
        left -= Math.max(delay, 1);
        if (left < 0) return Math.min(index, film.frames.length - 1);
    }
    return 0;
}

/** Plays only while it is on the screen. */
export function FilmView({ film, playing, label }: { film: Film; playing: boolean; label?: string }) {
    const canvas = useRef<HTMLCanvasElement>(null);
    useEffect(() => {
        const element = canvas.current;
        if (element === null || film.frames.length === 0) return;
        let shown = -1;
        const show = (index: number): void => {
            const frame = film.frames[index];
            if (index === shown || frame === undefined) return;
            shown = index;
            drawPixels(element, frame);
        };
        if (!playing) {
            // Half way the transition is seen best.
            show(Math.floor((film.frames.length - 1) / 2));
            return;
        }
        let request = 0;
        const began = performance.now();
        const step = (now: number): void => {
            show(frameAt(film, Math.max(0, now - began) / 10));
            request = requestAnimationFrame(step);
        };
        const watcher = new IntersectionObserver((entries) => {
            cancelAnimationFrame(request);
            if (entries.some((entry) => entry.isIntersecting)) request = requestAnimationFrame(step);
        });
        show(0);
        watcher.observe(element);
        return () => {
            watcher.disconnect();
            cancelAnimationFrame(request);
        };
    }, [film, playing]);
    return (
        <canvas
            ref={canvas}
            class="film"
            role={label === undefined ? undefined : 'img'}
            aria-label={label}
            aria-hidden={label === undefined}
        />
    );
}
