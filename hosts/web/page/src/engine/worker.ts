// The worker's script, which stands behind the engine's own: it takes the page's orders to the engine.
import { blobOf } from './pixels';
import { noMemory, unreadableFile } from './protocol';
import type { Size, Give, OrderName, Pixels, Progress, ReadPicture, Reply, Request, Take } from './protocol';

interface EngineModule {
    HEAPU8: Uint8Array<ArrayBuffer>;
    ccall(name: string, returns: string, types: string[], values: unknown[]): unknown;
}

declare function createEngine(options: {
    instantiateWasm(imports: WebAssembly.Imports, done: (instance: WebAssembly.Instance) => void): object;
    tellProgress(caption: string, position: number, total: number): void;
    print(text: string): void;
    printErr(text: string): void;
}): Promise<EngineModule>;

const reply = (message: Reply, transfer: Transferable[] = []): void =>
    self.postMessage(message, { transfer });

let current = 0;
let lastTold = 0;

/** Not more often than a screen shows. */
function tellProgress(progress: Progress): void {
    const now = performance.now();
    if (progress.position !== 0 && progress.position !== progress.total && now - lastTold < 15) return;
    lastTold = now;
    reply({ id: current, progress });
}

function transferable(given: object): Transferable[] {
    const found: Transferable[] = [];
    for (const value of Object.values(given)) {
        if (ArrayBuffer.isView(value)) found.push(value.buffer);
        else if (value !== null && typeof value === 'object') found.push(...transferable(value));
    }
    return found;
}

/** Its message is the engine's own reason, in one line. */
class EngineError extends Error {}

interface Added extends Size {
    shownWidth: number;
    shownHeight: number;
}

/** JPEG and BMP files. */
const isOpaque = (bytes: ArrayBuffer): boolean =>
    /^(\xff\xd8|BM)/.test(String.fromCharCode(...new Uint8Array(bytes, 0, Math.min(2, bytes.byteLength))));

class Engine {
    constructor(private readonly module: EngineModule) {}

    async do(name: OrderName, take: Take<OrderName>): Promise<Give<OrderName>> {
        switch (name) {
            case 'read':
                return this.read(take as Take<'read'>);
            case 'add':
                this.add(take as Take<'add'>);
                return {};
            case 'frame':
                return { pixels: this.frame((take as Take<'frame'>).index) };
            case 'frames':
                return { frames: (take as Take<'frames'>).indices.map((index) => this.frame(index)) };
            case 'pack':
                this.order(name, take);
                return { file: this.output() };
            default:
                return this.order(name, take) as unknown as Give<OrderName>;
        }
    }

    private order(name: OrderName, take: object): Record<string, unknown> {
        const text = JSON.stringify({ do: name, ...take });
        const answer = JSON.parse(
            this.module.ccall('LumafoldDo', 'string', ['string'], [text]) as string,
        ) as {
            error?: string;
        };
        if (answer.error !== undefined) throw new EngineError(answer.error);
        return answer as Record<string, unknown>;
    }

    private output(): Uint8Array<ArrayBuffer> {
        const start = this.number('LumafoldOutput');
        return this.module.HEAPU8.slice(start, start + this.number('LumafoldOutputSize'));
    }

    private number(name: string, ...values: number[]): number {
        const types = values.map(() => 'number');
        return (this.module.ccall(name, 'number', types, values) as number) >>> 0;
    }

    private add({ bytes, ...order }: Take<'add'> & { show?: boolean }): Added {
        const room = this.number('LumafoldInput', bytes.byteLength);
        if (room === 0 && bytes.byteLength > 0) throw new EngineError(noMemory);
        this.module.HEAPU8.set(new Uint8Array(bytes), room);
        return this.order('add', order) as unknown as Added;
    }

    private async read({ bytes, type, box }: Take<'read'>): Promise<ReadPicture> {
        const fit = { mode: 'most', ...box } as const;
        const added = this.add({ bytes, number: 1, matte: 0xffffff, fit, show: true });
        const thumbnail = blobOf(this.pixels(added.shownWidth, added.shownHeight), 'image/jpeg');
        this.order('remove', { number: 1 });
        return {
            width: added.width,
            height: added.height,
            // What stands on the disk may be changed or go while the page is open.
            file: new Blob([bytes], { type }),
            thumbnail: await thumbnail,
            opaque: isOpaque(bytes),
        };
    }

    private frame(index: number): Pixels {
        const size = this.order('frame', { index }) as unknown as { width: number; height: number };
        return this.pixels(size.width, size.height);
    }

    private pixels(width: number, height: number): Pixels {
        const bytes = this.output();
        return { width, height, rgba: new Uint8ClampedArray(bytes.buffer, 0, width * height * 4) };
    }
}

/** The browser's own errors come of files that it cannot read, and of memory that could not be had. */
function describe(error: unknown): string {
    if (error instanceof DOMException) return unreadableFile;
    if (error instanceof RangeError || error instanceof WebAssembly.RuntimeError) return noMemory;
    return error instanceof EngineError ? error.message : String(error);
}

let ready: Promise<Engine> | undefined;

/** The page has compiled the module, so that every worker after the first starts at once. */
function start(compiled: WebAssembly.Module): Promise<Engine> {
    return new Promise((resolve, reject) => {
        void createEngine({
            instantiateWasm: (imports, done) => {
                WebAssembly.instantiate(compiled, imports).then(done, reject);
                return {};
            },
            tellProgress: (caption, position, total) => tellProgress({ caption, position, total }),
            print: () => {},
            printErr: () => {},
        }).then((module) => resolve(new Engine(module)), reject);
    });
}

async function answer({ id, name, take }: Request): Promise<void> {
    try {
        const engine = await ready;
        if (engine === undefined) return;
        current = id;
        const give = await engine.do(name, take);
        reply({ id, give }, transferable(give));
    } catch (error) {
        reply({ id, error: describe(error) });
    }
}

let last = Promise.resolve();

self.onmessage = ({ data }: MessageEvent<WebAssembly.Module | Request>) => {
    if (data instanceof WebAssembly.Module) {
        ready = start(data);
        ready.catch(() => {});
    } else last = last.then(() => answer(data));
};
