// What a person makes: pictures in order, the gap behind each, settings, canvas and kind. Plain values that
// are replaced, never changed.
import type { BuildOrder, Entry, Fit, SettingValues, Size, Tables } from '../engine/protocol';

/** What leads from a picture to the next, and how long they are seen, in hundredths of a second. */
export interface Gap {
    transition: number;
    pause: number;
    delay: number;
}

export interface Picture {
    /** Of `newPictureId`. */
    id: number;
    name: string;
    /** As the engine reads it. */
    file: Blob;
    width: number;
    height: number;
    /** Within `thumbnailBox`. */
    thumbnail: Blob;
    /** Whether its kind of file knows no clear pixels. */
    opaque: boolean;
    gap: Gap;
}

/** Not the number of any other picture, in this tab or another; the engine takes 31 bits. */
export const newPictureId = (): number => Math.floor(Math.random() * 2 ** 31);

export const thumbnailBox = { width: 640, height: 480 };

export const canvasModes = ['own', 'most', 'contain', 'cover'] as const;
/** Of a canvas, in pixels. */
export const largestSide = 4096;
export const largestSeed = 2 ** 32 - 1;

export interface Canvas {
    mode: (typeof canvasModes)[number];
    width: number;
    height: number;
}

export interface Project {
    pictures: Picture[];
    settings: SettingValues;
    canvas: Canvas;
    kind: string;
    /** Of kinds that can leave something out, 0 to 100; null keeps every colour. */
    quality: number | null;
    /** Of the last "surprise me", null before it. */
    seed: number | null;
}

export function newProject(tables: Tables): Project {
    return {
        pictures: [],
        settings: Object.fromEntries(tables.settings.map((setting) => [setting.key, setting.default])),
        canvas: { mode: 'own', width: 640, height: 480 },
        kind: tables.kinds[0]?.id ?? '',
        quality: null,
        seed: null,
    };
}

/** A setting's value; the keys are the engine's own, so each has one. */
export const valueOf = (project: Project, key: string): number => project.settings[key] ?? 0;

/** How much smaller than its file a picture is in an animation whose canvas has no size of its own. */
function pictureFactor(picture: Size, canvas: Canvas): number {
    return canvas.mode === 'own'
        ? 1
        : Math.min(1, canvas.width / picture.width, canvas.height / picture.height);
}

/** The canvas that the engine makes of these pictures. */
export function canvasSize({ canvas, pictures }: Project): Size {
    if (canvas.mode === 'contain' || canvas.mode === 'cover')
        return { width: canvas.width, height: canvas.height };
    const largest = (side: keyof Size): number =>
        Math.max(1, ...pictures.map((picture) => Math.round(picture[side] * pictureFactor(picture, canvas))));
    return { width: largest('width'), height: largest('height') };
}

/** How much smaller than the real one a canvas in this box is; at most 1. */
export function boxFactor(project: Project, box: Size): number {
    const canvas = canvasSize(project);
    return Math.min(1, box.width / canvas.width, box.height / canvas.height);
}

/** How a picture comes to its size on the real canvas (factor 1) or on a smaller one. */
function fitOf({ canvas }: Project, picture: Picture, factor: number): Fit {
    const { mode, width, height } = canvas;
    if (factor === 1) return mode === 'own' ? { mode } : { mode, width, height };
    if (mode === 'contain' || mode === 'cover') {
        const scaled = (length: number): number => Math.max(1, Math.round(length * factor));
        return { mode, width: scaled(width), height: scaled(height) };
    }
    const own = factor * pictureFactor(picture, canvas);
    const side = (length: number): number => Math.max(1, Math.round(length * own));
    return { mode: 'stretch', width: side(picture.width), height: side(picture.height) };
}

/** Photos of more pixels than this are previewed by their thumbnails. */
const mostPreviewed = 2e6;
const smallBox = { width: 400, height: 300 };

/** The file to make a picture of this size of, which need not be the whole one. */
function sourceOf({ file, thumbnail, width, height, opaque }: Picture, fit: Fit, factor: number): Blob {
    const small =
        factor < 1 && fit.mode !== 'own' && fit.width <= smallBox.width && fit.height <= smallBox.height;
    return small && opaque && width * height > mostPreviewed ? thumbnail : file;
}

/** The pictures as a room holds them for an animation of this project. */
export function heldPictures(project: Project, pictures: readonly Picture[], factor: number) {
    return pictures.map((picture) => {
        const fit = fitOf(project, picture, factor);
        return { id: picture.id, file: sourceOf(picture, fit, factor), fit };
    });
}

export const entryOf = (picture: Picture): Entry => ({ picture: picture.id, ...picture.gap });

export const packOrder = ({ quality }: Project): { quality?: number } =>
    quality === null ? {} : { quality };

export function buildOrder(project: Project, entries: Entry[], factor: number): BuildOrder {
    return {
        kind: project.kind,
        settings: project.settings,
        entries,
        lengthPercent: Math.max(1, Math.round(factor * 100)),
    };
}

/** The picture that a gap leads to: the last leads back to the first. */
export function nextPicture(project: Project, id: number): Picture | undefined {
    const index = project.pictures.findIndex((picture) => picture.id === id);
    return index < 0 ? undefined : project.pictures[(index + 1) % project.pictures.length];
}

export function moved<T>(list: readonly T[], from: number, to: number): T[] {
    const result = [...list];
    const [item] = result.splice(from, 1);
    if (item !== undefined) result.splice(Math.max(0, Math.min(to, result.length)), 0, item);
    return result;
}

/** Small numbers that look random and are the same for the same seed everywhere. */
export function randomNumbers(seed: number): () => number {
    let state = seed >>> 0;
    return () => {
        state = (state + 0x6d2b79f5) >>> 0;
        let mixed = Math.imul(state ^ (state >>> 15), state | 1);
        mixed ^= mixed + Math.imul(mixed ^ (mixed >>> 7), mixed | 61);
        return ((mixed ^ (mixed >>> 14)) >>> 0) / 2 ** 32;
    };
}
