// How views come to the app and its state.
import { createContext } from 'preact';
import { useContext } from 'preact/hooks';
import type { App, AppState } from '../state/app';
import type { BuilderState } from '../state/builder';
import type { Project } from '../state/project';
import { useStore } from '../state/store';

export const AppContext = createContext<App | null>(null);

export function useApp(): App {
    const app = useContext(AppContext);
    if (app === null) throw new Error('a view outside the app');
    return app;
}

export const useAppState = <Part>(part: (state: AppState) => Part): Part => useStore(useApp().store, part);
export const useProject = (): Project => useAppState((state) => state.project);
export const useBuilder = <Part>(part: (state: BuilderState) => Part): Part =>
    useStore(useApp().builder.store, part);
