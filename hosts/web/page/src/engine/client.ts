// The page's end of a worker: orders as promises, and an end at any moment.
import { noMemory } from './protocol';
import type { Give, OrderName, Progress, Reply, Request, Take } from './protocol';

/** The worker was ended before it answered. */
export class Ended extends Error {
    constructor() {
        super('ended');
    }
}

interface Waiting {
    resolve(give: Give<OrderName>): void;
    reject(error: Error): void;
    progress?: (progress: Progress) => void;
}

/** The engine stands in the page as texts: the worker's script, and the module packed and in base 64. */
const textOf = (id: string): string => document.getElementById(id)?.textContent?.trim() ?? '';

/** Of a text in base 64. */
export function bytesOf(packed: string): Uint8Array<ArrayBuffer> {
    const letters = atob(packed);
    const bytes = new Uint8Array(letters.length);
    for (let index = 0; index < letters.length; index++) bytes[index] = letters.charCodeAt(index);
    return bytes;
}

function once<T>(make: () => T): () => T {
    let made: { value: T } | undefined;
    return () => (made ??= { value: make() }).value;
}

const scriptUrl = once(() => URL.createObjectURL(new Blob([textOf('engine')], { type: 'text/javascript' })));

const compiledModule = once(async () => {
    const unpacked = new Blob([bytesOf(textOf('module'))])
        .stream()
        .pipeThrough(new DecompressionStream('gzip'));
    return WebAssembly.compile(await new Response(unpacked).arrayBuffer());
});

export class EngineClient {
    private readonly worker = new Worker(scriptUrl());
    private readonly waiting = new Map<number, Waiting>();
    private nextId = 1;
    private ended = false;

    /** Orders go to the worker once it has the module. */
    private readonly started = compiledModule().then((module) => this.worker.postMessage(module));

    constructor() {
        this.started.catch((error: Error) => this.end(error));
        this.worker.onmessage = ({ data }: MessageEvent<Reply>) => this.take(data);
        this.worker.onerror = (event) => {
            event.preventDefault();
            this.end(new Error(noMemory));
        };
    }

    /** Orders that are asked for before the worker is ready wait for it. */
    ask<Name extends OrderName>(
        name: Name,
        take: Take<Name>,
        progress?: (progress: Progress) => void,
    ): Promise<Give<Name>> {
        if (this.ended) return Promise.reject(new Ended());
        const id = this.nextId++;
        const request: Request = { id, name, take };
        return new Promise<Give<Name>>((resolve, reject) => {
            const waiting: Waiting = { resolve: resolve as Waiting['resolve'], reject };
            if (progress !== undefined) waiting.progress = progress;
            this.waiting.set(id, waiting);
            // A file's bytes are the worker's from here on.
            const transfer = 'bytes' in take ? [take.bytes] : [];
            void this.started.then(() => this.worker.postMessage(request, transfer));
        });
    }

    /** Orders that are not done are rejected, with `Ended` unless another reason is given. */
    end(reason: Error = new Ended()): void {
        this.ended = true;
        this.worker.terminate();
        for (const waiting of this.waiting.values()) waiting.reject(reason);
        this.waiting.clear();
    }

    private take(message: Reply): void {
        const waiting = this.waiting.get(message.id);
        if (waiting === undefined) return;
        if ('progress' in message) {
            waiting.progress?.(message.progress);
            return;
        }
        this.waiting.delete(message.id);
        if ('error' in message) waiting.reject(new Error(message.error));
        else waiting.resolve(message.give);
    }
}
