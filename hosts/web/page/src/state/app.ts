// The page's state and everything that a person can do with it. Views read the store and call these.
import { Ended, EngineClient } from '../engine/client';
import type { Tables } from '../engine/protocol';
import { texts } from '../texts';
import { Builder } from './builder';
import { completeProject, completeSettings } from './complete';
import { Importer } from './import';
import { Keeper, projectFile, readProjectFile } from './keep';
import { Previews } from './previews';
import { moved, newPictureId, newProject, randomNumbers } from './project';
import type { Canvas, Gap, Picture, Project } from './project';
import { Store } from './store';

export interface Notice {
    id: number;
    text: string;
    kind: 'error' | 'done';
    undo?: () => void;
}

/** A picture that the page itself has, with what leads to the next. */
export interface BroughtPicture {
    name: string;
    file: Blob;
    transition: string;
}

export type Workspace = 'transition' | 'output';

export interface AppState {
    project: Project;
    /** The picture whose gap is worked on. */
    selected: number | null;
    workspace: Workspace;
    /** Pictures that are still being read. */
    reading: number;
    notices: Notice[];
    resultOpen: boolean;
}

/** Pictures larger than this begin on a canvas that makes a file of sensible size. */
const largeSide = 1280;
const usualBox = { width: 640, height: 480 };
const noticeMilliseconds = 8000;
/** How often pictures that are being read are shown. */
const groupMilliseconds = 400;

/** Why a file is no picture; what is not the engine's own reason is the browser's. */
const refusal = (error: unknown): string =>
    error instanceof DOMException ? texts.unreadable : texts.reason((error as Error).message);

export class App {
    readonly store: Store<AppState>;
    readonly builder = new Builder();
    readonly previews: Previews;
    private readonly importer = new Importer();
    private nextId = 1;
    /** Counts the projects that there have been. */
    private generation = 0;

    static async start(): Promise<App> {
        const engine = new EngineClient();
        const keeper = new Keeper();
        const [{ tables }, kept] = await Promise.all([
            engine.ask('tables', {}),
            keeper.load().catch(() => null),
        ]);
        return new App(engine, tables, keeper, kept);
    }

    private constructor(
        private readonly engine: EngineClient,
        readonly tables: Tables,
        private readonly keeper: Keeper,
        kept: Project | null,
    ) {
        this.previews = new Previews(tables.transitions);
        const project = completeProject(kept, tables);
        this.store = new Store<AppState>({
            project,
            selected: project.pictures[0]?.id ?? null,
            workspace: 'transition',
            reading: 0,
            notices: [],
            resultOpen: false,
        });
        this.builder.update(project, 'soon');
        this.store.subscribe((state, before) => {
            if (state.project !== before.project) this.projectChanged(state);
            else if (state.reading === 0 && before.reading > 0) this.builder.update(state.project, 'soon');
        });
    }

    get project(): Project {
        return this.store.get().project;
    }

    // Settings and gaps

    set(key: string, value: number): void {
        this.change({ settings: { ...this.project.settings, [key]: value } });
    }

    resetSettings(keys: readonly string[]): void {
        const settings = { ...this.project.settings };
        for (const setting of this.tables.settings) {
            if (keys.includes(setting.key)) settings[setting.key] = setting.default;
        }
        this.change({ settings });
    }

    setKind(kind: string): void {
        const usual = this.tables.kinds.find((row) => row.id === kind)?.usuallyTrueColour === true;
        const settings = { ...this.project.settings };
        if (usual) settings.TransitionTruecolour = 1;
        this.change({ kind, settings });
    }

    setQuality(quality: number | null): void {
        this.change({ quality });
    }

    setCanvas(canvas: Partial<Canvas>): void {
        this.change({ canvas: { ...this.project.canvas, ...canvas } });
    }

    setGap(id: number, gap: Partial<Gap>): void {
        const pictures = this.project.pictures.map((picture) =>
            picture.id === id ? { ...picture, gap: { ...picture.gap, ...gap } } : picture,
        );
        this.change({ pictures });
    }

    useForAll(transition: number): void {
        const before = this.project;
        const pictures = before.pictures.map((picture) => ({
            ...picture,
            gap: { ...picture.gap, transition },
        }));
        this.change({ pictures });
        this.tell(texts.usedForAll(this.transitionName(transition)), () => this.change(before));
    }

    surprise(seed: number): void {
        const random = randomNumbers(seed);
        const { length } = this.tables.transitions;
        const pictures = this.project.pictures.map((picture) => {
            const transition = Math.floor(random() * length);
            return { ...picture, gap: { ...picture.gap, transition } };
        });
        this.change({ pictures, seed });
        this.tell(texts.surprised(seed));
    }

    transitionName(row: number): string {
        return this.tables.transitions[row]?.name ?? '';
    }

    // Pictures

    async addFiles(files: readonly (File | BroughtPicture)[]): Promise<void> {
        const first = files[0];
        if (files.length === 1 && first instanceof Blob && /\.(ini|lumafold)$/i.test(first.name)) {
            return /ini$/i.test(first.name) ? this.importSettings(first) : this.openProject(first);
        }
        const { generation } = this;
        this.store.set({ reading: this.store.get().reading + files.length });
        /** The names of those that were refused, by the reason. */
        const refused = new Map<string, string[]>();
        let added: Picture[] = [];
        let counted = 0;
        let shown = -Infinity;
        for (const [index, one] of files.entries()) {
            try {
                const read = await this.importer.read(one instanceof Blob ? one : one.file);
                const transition = one instanceof Blob ? '' : one.transition;
                added.push(this.newPicture({ ...read, name: one.name }, transition));
            } catch (error) {
                const reason = refusal(error);
                refused.set(reason, [...(refused.get(reason) ?? []), one.name]);
            }
            // They were for a project that has been put away.
            if (generation !== this.generation) return;
            // Each change costs the page time for every picture that it has.
            if (index + 1 < files.length && performance.now() - shown < groupMilliseconds) continue;
            shown = performance.now();
            this.addPictures(added);
            added = [];
            this.store.set({ reading: this.store.get().reading - (index + 1 - counted) });
            counted = index + 1;
        }
        if (refused.size > 0) this.complain(texts.badPictures([...refused]));
    }

    private newPicture(read: Omit<Picture, 'id' | 'gap'>, transition: string): Picture {
        const { settings } = this.project;
        const row = this.tables.transitions.findIndex(({ name }) => name === transition);
        const gap: Gap = {
            transition: row >= 0 ? row : (settings.TransitionType ?? 0),
            pause: settings.TransitionPause ?? 0,
            delay: settings.TransitionDelay ?? 0,
        };
        return { ...read, id: newPictureId(), gap };
    }

    private addPictures(added: readonly Picture[]): void {
        const [first] = added;
        if (first === undefined) return;
        const { pictures, canvas } = this.project;
        const large =
            canvas.mode === 'own' && added.some(({ width, height }) => Math.max(width, height) > largeSide);
        this.change({
            pictures: [...pictures, ...added],
            ...(large ? { canvas: { mode: 'most', ...usualBox } } : {}),
        });
        if (this.store.get().selected === null) this.store.set({ selected: first.id });
    }

    movePicture(from: number, to: number): void {
        const pictures = moved(this.project.pictures, from, to);
        const place = Math.max(0, Math.min(to, pictures.length - 1));
        const picture = this.project.pictures[from];
        if (picture === undefined || place === from) return;
        this.change({ pictures });
        this.tell(texts.movedTo(picture.name, place + 1, pictures.length));
    }

    removePicture(id: number): void {
        const before = this.project;
        const index = before.pictures.findIndex((picture) => picture.id === id);
        const picture = before.pictures[index];
        if (picture === undefined) return;
        const pictures = before.pictures.filter((one) => one.id !== id);
        const { selected } = this.store.get();
        if (selected === id) {
            this.store.set({ selected: (pictures[index] ?? pictures[index - 1])?.id ?? null });
        }
        this.change({ pictures });
        this.tell(texts.removed(picture.name), () => this.store.set({ project: before, selected }));
    }

    selectGap(id: number): void {
        this.store.set({ selected: id, workspace: 'transition' });
    }

    showWorkspace(workspace: Workspace): void {
        this.store.set({ workspace });
    }

    // Whole projects and settings files

    emptyProject(): void {
        const before = this.project;
        this.replace(newProject(this.tables));
        this.tell(texts.emptied, () => this.replace(before));
    }

    projectFile(): Blob {
        return projectFile(this.project);
    }

    async openProject(file: File): Promise<void> {
        // What stands in a file that is none may be anything.
        const read = await readProjectFile(file).catch(() => null);
        const opened = completeProject(read, this.tables);
        if (opened.pictures.length === 0) return this.complain(texts.badProject(file.name));
        // Numbers of its own, so that no picture is taken for one that was here before.
        const pictures = opened.pictures.map((picture) => ({ ...picture, id: newPictureId() }));
        const before = this.project;
        this.replace({ ...opened, pictures });
        this.tell(file.name, () => this.replace(before));
    }

    async importSettings(file: File): Promise<void> {
        const { values } = await this.engine.ask('read settings', { text: await file.text() });
        const before = this.project;
        this.change({ settings: completeSettings(values, this.tables) });
        this.tell(texts.settingsTaken, () => this.change(before));
    }

    async settingsFile(): Promise<Blob> {
        const { text } = await this.engine.ask('write settings', { values: this.project.settings });
        return new Blob([text], { type: 'text/plain' });
    }

    // Result and notices

    showResult(open: boolean): void {
        this.store.set({ resultOpen: open });
        if (open) this.builder.buildNow();
    }

    tell(text: string, undo?: () => void): void {
        this.notify({ id: this.nextId++, text, kind: 'done', ...(undo === undefined ? {} : { undo }) });
    }

    complain(text: string): void {
        this.notify({ id: this.nextId++, text, kind: 'error' });
    }

    dismiss(id: number): void {
        this.store.set({ notices: this.store.get().notices.filter((notice) => notice.id !== id) });
    }

    /** What nobody foresaw is told, and nothing is lost by it. */
    complainOf(error: unknown): void {
        if (!(error instanceof Ended)) this.complain(texts.unknownError);
    }

    private notify(notice: Notice): void {
        // News of one kind take each other's place; complaints stay until they are dismissed.
        const others = this.store
            .get()
            .notices.filter((one) => one.kind === 'error' && one.text !== notice.text);
        this.store.set({ notices: [...others, notice].slice(-4) });
        if (notice.kind === 'done') setTimeout(() => this.dismiss(notice.id), noticeMilliseconds);
    }

    private change(change: Partial<Project>): void {
        this.store.set({ project: { ...this.project, ...change } });
    }

    /** Another project: what is still being read for this one is not added to it. */
    private replace(project: Project): void {
        this.generation++;
        this.store.set({ project, selected: project.pictures[0]?.id ?? null, reading: 0 });
    }

    private projectChanged({ project, reading }: AppState): void {
        // Undoing an earlier change would take this one back, too; and a result is of the project as it was.
        const notices = this.store.get().notices.filter(({ undo }) => undo === undefined);
        this.store.set({ notices, resultOpen: false });
        // While pictures are being read the next change comes at once.
        this.builder.update(project, reading > 0 ? 'when asked' : 'soon');
        this.keeper.keep(project, () => this.complain(texts.notKept));
    }
}
