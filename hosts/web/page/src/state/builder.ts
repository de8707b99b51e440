// The animation as it will be, kept up to date in a worker of its own: first a small build that tells about
// how large the file becomes, then the whole one. A change ends what has become useless.
import { Ended } from '../engine/client';
import { PictureRoom } from '../engine/picture_room';
import type { Built, Pixels, Progress } from '../engine/protocol';
import { Store } from './store';
import { boxFactor, buildOrder, canvasSize, entryOf, heldPictures, packOrder, valueOf } from './project';
import type { Project } from './project';

export interface Result {
    project: Project;
    built: Built;
    file: Blob;
}

export interface Forecast {
    bytes: number;
    frames: number;
    /** Hundredths of a second. */
    duration: number;
}

/** A build that leaves out every reduction of colours. */
interface ColourBuild {
    project: Project;
    room: PictureRoom;
    ready: Promise<unknown>;
}

export interface BuilderState {
    /** What the settings as they are would make, as far as a small build can tell. */
    forecast: Forecast | null;
    /** Of the project as it is; null while that is not built. */
    result: Result | null;
    /** The last there was, also when it is out of date. */
    lastResult: Result | null;
    running: boolean;
    /** Whether it waits for a person to ask for it, being long. */
    large: boolean;
    caption: string;
    /** 0 to 1 of the whole build. */
    done: number;
    secondsLeft: number | null;
    error: string | null;
}

const idle: BuilderState = {
    forecast: null,
    result: null,
    lastResult: null,
    running: false,
    large: false,
    caption: '',
    done: 0,
    secondsLeft: null,
    error: null,
};

const forecastBox = { width: 160, height: 120 };
/** Builds of more pixels than this, all frames together, wait to be asked for. */
const mostPixelsUnasked = 40e6;
const settleMilliseconds = 250;

/** How far a build is, from how long each of its phases took in another of the same shape. */
class Phases {
    private readonly seconds = new Map<string, number>();
    private caption = 'reading';
    private since = performance.now();

    constructor(private readonly like?: Phases) {}

    note(progress: Progress): void {
        if (progress.caption !== this.caption) this.turnTo(progress.caption);
    }

    turnTo(caption: string): void {
        const now = performance.now();
        this.seconds.set(this.caption, (this.seconds.get(this.caption) ?? 0) + (now - this.since) / 1000);
        this.caption = caption;
        this.since = now;
    }

    done({ position, total }: Progress): number {
        if (this.like === undefined) return 0;
        let before = 0;
        let all = 0;
        let seen = false;
        for (const [caption, seconds] of this.like.seconds) {
            if (caption === this.caption) {
                before += total > 0 ? seconds * Math.min(1, position / total) : 0;
                seen = true;
            } else if (!seen) before += seconds;
            all += seconds;
        }
        return all > 0 && seen ? before / all : 0;
    }
}

export class Builder {
    readonly store = new Store<BuilderState>(idle);
    private room: PictureRoom | undefined;
    private forecaster: PictureRoom | undefined;
    private colour: ColourBuild | undefined;
    private project: Project | undefined;
    private timer: ReturnType<typeof setTimeout> | undefined;
    /** How much more than by its area a large file is than a small one, from the last that was built. */
    private growth = 0.75;
    private shape: Phases | undefined;
    /** Whether a person wants the project as it is, however long it takes. */
    private asked = false;

    /** The project has changed; the build begins when the changes pause, or a person asks for it. */
    update(project: Project, begins: 'soon' | 'when asked'): void {
        this.project = project;
        this.asked = false;
        clearTimeout(this.timer);
        if (this.store.get().running) this.stop();
        this.store.set({ result: null, error: null, large: false });
        if (project.pictures.length === 0) {
            this.store.set({ ...idle });
            return;
        }
        if (begins === 'soon') this.timer = setTimeout(() => void this.run(project), settleMilliseconds);
    }

    /** Builds now, however long it takes. */
    buildNow(): void {
        this.asked = true;
        if (this.project === undefined || this.store.get().running || this.store.get().result) return;
        clearTimeout(this.timer);
        void this.run(this.project);
    }

    /** Ends what runs; the project is built when it is asked for, or changes. */
    cancel(): void {
        this.asked = false;
        clearTimeout(this.timer);
        this.stop();
        this.store.set({ large: true });
    }

    /** A frame as it will be. */
    async frame(index: number): Promise<Pixels> {
        if (this.room === undefined) throw new Ended();
        return (await this.room.engine.ask('frame', { index })).pixels;
    }

    /** The same before its colours are reduced; that build is made when it is first asked for. */
    async fullColourFrame(index: number): Promise<Pixels> {
        const project = this.store.get().result?.project;
        if (project === undefined) throw new Ended();
        if (this.colour?.project !== project) {
            this.colour?.room.engine.end();
            this.colour = this.colourBuild(project);
        }
        const { room, ready } = this.colour;
        await ready;
        return (await room.engine.ask('frame', { index })).pixels;
    }

    private colourBuild(project: Project): ColourBuild {
        const room = new PictureRoom();
        const order = buildOrder(project, project.pictures.map(entryOf), 1);
        const ready = this.hold(room, project, 1).then(() =>
            room.engine.ask('build', { ...order, fullColour: true }),
        );
        // What failed once would fail for every other frame, too; only its memory is given back.
        ready.catch(() => room.engine.end());
        return { project, room, ready };
    }

    private stop(): void {
        this.room?.engine.end();
        this.room = undefined;
        this.store.set({ running: false, done: 0, secondsLeft: null, caption: '' });
    }

    private hold(room: PictureRoom, project: Project, factor: number): Promise<void> {
        const matte = valueOf(project, 'TransitionMattcolour');
        return room.hold(heldPictures(project, project.pictures, factor), matte);
    }

    private async run(project: Project): Promise<void> {
        this.store.set({ running: true, error: null, large: false, done: 0, secondsLeft: null });
        this.room ??= new PictureRoom();
        const room = this.room;
        const current = (): boolean => this.room === room && this.project === project;
        try {
            // Where the small build would be the whole one, it tells nothing sooner.
            const small = boxFactor(project, forecastBox) < 1 ? await this.forecast(project) : null;
            if (!current()) return;
            const size = canvasSize(project);
            const pixels = size.width * size.height * (this.store.get().forecast?.frames ?? 0);
            if (small !== null && !this.asked && pixels > mostPixelsUnasked) {
                this.store.set({ running: false, large: true });
                return;
            }
            const result = await this.build(room, project);
            if (!current()) return;
            if (small !== null) this.growth = result.file.size / small;
            const forecast = this.described(result.built, result.file.size);
            this.store.set({ running: false, result, lastResult: result, forecast, done: 1 });
        } catch (error) {
            if (!current() || error instanceof Ended) return;
            this.stop();
            // It may be this one that has no memory left.
            this.forecaster?.engine.end();
            this.forecaster = undefined;
            this.store.set({ error: (error as Error).message });
        }
    }

    private described(built: Built, bytes: number): Forecast {
        const duration = built.delays.reduce((sum, delay) => sum + delay, 0);
        return { bytes, frames: built.delays.length, duration };
    }

    /** What the small file would have if it grew with the area alone. */
    private async forecast(project: Project): Promise<number> {
        this.forecaster ??= new PictureRoom();
        const { engine } = this.forecaster;
        const factor = boxFactor(project, forecastBox);
        await this.hold(this.forecaster, project, factor);
        if (this.project !== project) throw new Ended();
        const phases = new Phases();
        const order = buildOrder(project, project.pictures.map(entryOf), factor);
        const built = await engine.ask('build', order, (progress) => phases.note(progress));
        phases.turnTo('');
        const { file } = await engine.ask('pack', packOrder(project));
        phases.turnTo('end');
        this.shape = phases;
        const size = canvasSize(project);
        const grown = file.byteLength * ((size.width * size.height) / (built.width * built.height));
        this.store.set({ forecast: this.described(built, Math.round(grown * this.growth)) });
        return grown;
    }

    private async build(room: PictureRoom, project: Project): Promise<Result> {
        const began = performance.now();
        const phases = new Phases(this.shape);
        const tell = (progress: Progress): void => {
            phases.note(progress);
            const done = Math.max(this.store.get().done, phases.done(progress));
            const seconds = (performance.now() - began) / 1000;
            const secondsLeft = done > 0.05 ? (seconds * (1 - done)) / done : null;
            this.store.set({ caption: progress.caption, done, secondsLeft });
        };
        await this.hold(room, project, 1);
        const order = buildOrder(project, project.pictures.map(entryOf), 1);
        const built = await room.engine.ask('build', order, tell);
        tell({ caption: '', position: 0, total: 0 });
        const { file } = await room.engine.ask('pack', packOrder(project), tell);
        return { project, built, file: new Blob([file]) };
    }
}
