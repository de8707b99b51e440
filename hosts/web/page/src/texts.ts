// Every text that the page shows, the engine's own names and meanings apart.
import { unreadableFile } from './engine/protocol';

const plural = (count: number, one: string, many = `${one}s`): string =>
    `${count} ${count === 1 ? one : many}`;

export const seconds = (hundredths: number): string => `${(hundredths / 100).toFixed(2)} s`;

export function bytes(count: number): string {
    if (count < 1000) return `${count} bytes`;
    return count < 1e6 ? `${(count / 1e3).toFixed(1)} kB` : `${(count / 1e6).toFixed(2)} MB`;
}

const list = (parts: string[]): string => new Intl.ListFormat('en').format(parts);

/** A reason as the end of a sentence. */
const ended = (reason: string): string => (/[.!?]$/.test(reason) ? reason : `${reason}.`);

const kindsRead = 'PNG, JPEG, GIF, BMP and WebP can always be read';

export const texts = {
    name: 'Lumafold',
    slogan: 'Still pictures into a looping animation. Nothing leaves this computer.',
    starting: 'Starting the engine…',
    failedToStart: (reason: string) =>
        `The engine could not be started (${reason}). Lumafold needs a browser of 2023 or later with WebAssembly.`,

    add: 'Add pictures',
    dropHere: 'Drop pictures here',
    orPaste:
        'or paste one, or choose files. PNG, JPEG, GIF, BMP and WebP, and whatever else this browser shows.',
    trySamples: 'Try it with three sample pictures',
    steps: [
        ['Add pictures', 'Of any sizes. Drag them into the order you like.'],
        ['Choose transitions', 'All 33 play with your own pictures before you choose.'],
        [
            'Save the animation',
            'See every frame, its colours and the size of the file while you change settings.',
        ],
    ] as const,

    more: 'Project and settings',
    newProject: 'New',
    openProject: 'Open a project…',
    saveProject: 'Save the project',
    importSettings: 'Import LUMAFOLD.INI…',
    exportSettings: 'Export LUMAFOLD.INI',
    licences: 'Licenses of the libraries inside',
    emptied: 'A new, empty project.',
    undo: 'Undo',
    dismiss: 'Dismiss',

    pictures: 'Pictures',
    picturesHelp:
        'Drag to sort. With the keyboard: Alt and an arrow key moves the picture that has the focus.',
    pictureName: (place: number, count: number, name: string, size: string) =>
        `Picture ${place} of ${count}: ${name}, ${size}`,
    pixels: (width: number, height: number) => `${width} × ${height}`,
    earlier: (name: string) => `Move ${name} earlier`,
    later: (name: string) => `Move ${name} later`,
    remove: (name: string) => `Remove ${name}`,
    movedTo: (name: string, place: number, count: number) => `${name} is now picture ${place} of ${count}.`,
    removed: (name: string) => `${name} was removed.`,
    reading: (count: number) => `Reading ${plural(count, 'picture')}…`,
    gapName: (from: string, to: string, transition: string) =>
        `Transition from ${from} to ${to}: ${transition}`,

    transition: 'Transition',
    output: 'Output',
    workspace: 'What to work on',
    gapTitle: (from: number, to: number) => `Picture ${from} to ${to}`,
    gapTitleAlone: 'To the matte colour and back',
    chooseTransition: 'Transitions',
    noSettings: 'This transition has no settings of its own.',
    settingsScope: (name: string, sharing: string[]) =>
        `These hold for every “${name}” of the animation${
            sharing.length > 0 ? `; some or all of them also for ${list(sharing)}` : ''
        }.`,
    timing: 'Timing of this picture',
    pause: 'Shown for',
    delay: 'Each frame in between',
    unitSeconds: 's',
    useForAll: 'Use for all',
    usedForAll: (name: string) => `${name} now stands between all pictures.`,
    surprise: 'Surprise me',
    seed: 'Seed',
    surprised: (seed: number) => `Transitions drawn with seed ${seed}.`,
    reset: 'Defaults',
    large: (name: string) => `${name} between these pictures, playing`,
    noPreview: 'No preview could be made',
    pauseFilm: 'Pause',
    playFilm: 'Play',

    size: 'Size',
    canvasModes: { own: 'As they are', most: 'At most', contain: 'Whole', cover: 'Cropped' },
    canvasMode: 'How pictures come to their size',
    width: 'Width',
    height: 'Height',
    canvasMeanings: {
        own: 'Each picture keeps its size, on a canvas as large as the largest.',
        most: 'Larger pictures are made smaller, in proportion.',
        contain: 'Every picture whole on a canvas of this size, with the matte colour beside it.',
        cover: 'Every picture fills a canvas of this size and is cut at its edges.',
    },
    canvasNow: (width: number, height: number) => `The canvas has ${width} × ${height} pixels.`,
    largeCanvas: 'That makes a very large file: choose a smaller size.',
    kind: 'Kind of file',
    lossless: 'Keep every colour',
    losslessMeaning: 'Nothing of the picture is left out; the file is larger.',
    quality: 'Quality',
    colours: 'Colours',
    trueColourNever: (kind: string) => `${kind} holds 256 colours at most.`,
    noSupercompression:
        'Off with true colour: changed black pixels would let the frame before shine through.',
    further: 'More settings',

    frames: 'Frames as they will be',
    frameOf: (index: number, count: number) => `Frame ${index + 1} of ${count}`,
    compare: 'Compare with full colour',
    compareHandle: 'Where reduced and full colour meet',
    reducedSide: 'as it will be',
    fullSide: 'full colour',
    zoom: 'Zoom',
    zoomFit: 'Fit',
    palette: (colours: string) => `The palette: ${colours}`,
    notBuilt: 'Frames are shown once the animation is built.',
    waitsForBuild: 'This is a large animation, so it is built when you ask for it.',
    updating: 'Bringing the frames up to date…',
    outOfDate: 'Not up to date: press Build',

    build: 'Build',
    show: 'Show and save',
    cancel: 'Cancel',
    building: 'Building the animation',
    notBuiltTitle: 'The animation was not built',
    packing: 'Packing the file',
    readingPictures: 'Reading the pictures',
    secondsLeft: (count: number) => `about ${Math.max(1, Math.round(count))} s left`,
    about: (size: string) => `about ${size}`,
    summary: (frames: number, duration: number) => `${plural(frames, 'frame')}, ${seconds(duration)}`,
    phases: {
        Calculating: 'Measuring the pictures',
        Adjusting: 'Placing the pictures',
        Building: 'Drawing the transitions',
        Quantizing: 'Choosing the palette',
        Supercompressing: 'Finding what stays as it was',
        Remapping: 'Reducing the colours',
    } as Record<string, string>,

    result: 'Your animation',
    resultAlternative: (playing: boolean) => `The finished animation, ${playing ? 'playing' : 'held still'}`,
    download: (size: string) => `Save the file (${size})`,
    dragOut: 'The picture can be dragged out of the page, too.',
    notShown: 'Browsers do not play this kind; these are its frames.',
    copyFrame: 'Copy this frame as PNG',
    copied: 'The frame is in the clipboard.',
    notCopied: 'The browser did not allow that; save the frame from its context menu instead.',
    close: 'Close',

    memoryError:
        'There is not enough memory for this animation. Choose a smaller size under Output, longer steps, or fewer pictures. Pictures and settings are still here.',
    buildError: (reason: string) =>
        `The animation could not be built: ${ended(texts.reason(reason))} Pictures and settings are still here.`,
    badPictures: (refused: [reason: string, names: string[]][]) =>
        refused
            .map(
                ([reason, names]) =>
                    `${list(names)} ${names.length === 1 ? 'was' : 'were'} not added: ${ended(reason)}`,
            )
            .join(' '),
    unknownKind: `this is no picture that can be read here; ${kindsRead}`,
    noHeic: `this browser cannot show HEIC pictures: save it as JPEG first, or open this page in Safari. ${kindsRead}`,
    unreadable: 'the browser could not read the file. It may have been moved or changed: choose it again',
    reason: (reason: string): string => (reason === unreadableFile ? texts.unreadable : reason),
    badProject: (name: string) =>
        `${name} was not opened: this is no project of Lumafold, or not a whole one.`,
    notKept: 'This browser keeps nothing for this page: save the project as a file before you close it.',
    settingsTaken: 'The settings were taken over.',
    unknownError:
        'Something went wrong in this page. Pictures and settings are still here: save the project, and open the page again.',
};
