// What page and worker say to each other. The worker does one order at a time, in the order of arrival.

/** One row of the engine's table of settings. */
export interface Setting {
    key: string;
    kind: 'switch' | 'number' | 'colour' | 'choice';
    default: number;
    minimum: number;
    maximum: number;
    label: string;
    choices: string[];
    meaning: string;
}

export interface Transition {
    name: string;
    /** Keys of the settings that it reads. */
    settings: string[];
}

/** A kind of file that the engine writes. */
export interface OutputKind {
    id: string;
    name: string;
    suffix: string;
    mediaType: string;
    trueColour: boolean;
    /** Whether frames have true colour unless a palette is asked for. */
    usuallyTrueColour: boolean;
    /** Whether there is a quality to choose. */
    lossy: boolean;
    /** Whether browsers play it. */
    shown: boolean;
}

export interface Tables {
    version: string;
    settings: Setting[];
    transitions: Transition[];
    kinds: OutputKind[];
}

export type SettingValues = Record<string, number>;

export interface Size {
    width: number;
    height: number;
}

/** How a picture comes to its size: as it is; within a box, never larger than it is; in the box with the
 *  matte beside it; filling the box, cut at its edges; or filling it out of proportion. */
export type Fit = { mode: 'own' } | ({ mode: 'most' | 'contain' | 'cover' | 'stretch' } & Size);

export interface Entry {
    picture: number;
    transition: number;
    /** Hundredths of a second. */
    pause: number;
    delay: number;
}

/** Pixels as a canvas takes them. */
export interface Pixels {
    width: number;
    height: number;
    rgba: Uint8ClampedArray<ArrayBuffer>;
}

export interface Built {
    width: number;
    height: number;
    /** Of each frame, in hundredths of a second. */
    delays: number[];
    /** 0x00BBGGRR; empty where frames have true colour. */
    palette: number[];
    colours: string;
}

export interface BuildOrder {
    kind: string;
    settings: SettingValues;
    entries: Entry[];
    fullColour?: boolean;
    /** Scales settings that are measured in pixels; 100 leaves them. */
    lengthPercent?: number;
}

export interface PictureFile {
    number: number;
    bytes: ArrayBuffer;
    /** 0x00BBGGRR, behind clear pixels. */
    matte: number;
    fit: Fit;
}

export interface ReadPicture extends Size {
    file: Blob;
    thumbnail: Blob;
    /** Whether it is known to have no clear pixels. */
    opaque: boolean;
}

/** Every order with what it takes and what it gives. */
export interface Orders {
    tables: [take: Record<string, never>, give: { tables: Tables }];
    'read settings': [take: { text: string }, give: { values: SettingValues }];
    'write settings': [take: { values: SettingValues }, give: { text: string }];
    /** A picture as a person brings it, with a copy of its file and a thumbnail; nothing of it stays. */
    read: [take: { bytes: ArrayBuffer; type: string; box: Size }, give: ReadPicture];
    add: [take: PictureFile, give: Record<string, never>];
    remove: [take: { number: number }, give: Record<string, never>];
    build: [take: BuildOrder, give: Built];
    frame: [take: { index: number }, give: { pixels: Pixels }];
    /** Several at once, for small ones. */
    frames: [take: { indices: number[] }, give: { frames: Pixels[] }];
    /** Without a quality, 0 to 100, every colour is kept. */
    pack: [take: { quality?: number }, give: { file: Uint8Array<ArrayBuffer> }];
}

export type OrderName = keyof Orders;
export type Take<Name extends OrderName> = Orders[Name][0];
export type Give<Name extends OrderName> = Orders[Name][1];

export interface Request {
    id: number;
    name: OrderName;
    take: Take<OrderName>;
}

/** How far a build has come: the engine's caption, and a total of 0 where nobody knows. */
export interface Progress {
    caption: string;
    position: number;
    total: number;
}

/** Reasons why an order was not done that are not the engine's own. */
export const unreadableFile = 'unreadable file';
export const noMemory = 'not enough memory';

export type Reply =
    | { id: number; give: Give<OrderName> }
    | { id: number; error: string }
    | { id: number; progress: Progress };
