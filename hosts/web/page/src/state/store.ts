// A value that tells its readers when it changes, and the view's way to read a part of it.
import { useEffect, useRef, useState } from 'preact/hooks';

export class Store<State extends object> {
    private readonly listeners = new Set<(state: State, before: State) => void>();

    constructor(private state: State) {}

    get(): State {
        return this.state;
    }

    set(change: Partial<State>): void {
        const before = this.state;
        this.state = { ...before, ...change };
        for (const listener of [...this.listeners]) listener(this.state, before);
    }

    /** The function that ends it. */
    subscribe(listener: (state: State, before: State) => void): () => void {
        this.listeners.add(listener);
        return () => this.listeners.delete(listener);
    }
}

/** A part of the state; the view is drawn again when that part is another value. */
export function useStore<State extends object, Part>(
    store: Store<State>,
    part: (state: State) => Part,
): Part {
    const [, draw] = useState({});
    const now = part(store.get());
    const shown = useRef({ part, now });
    shown.current = { part, now };
    useEffect(() => {
        const check = (state: State): void => {
            if (!Object.is(shown.current.part(state), shown.current.now)) draw({});
        };
        check(store.get());
        return store.subscribe(check);
    }, [store]);
    return now;
}
