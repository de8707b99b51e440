// The page from top to bottom, and what works on all of it: dropping and pasting files.
import { useEffect, useState } from 'preact/hooks';
import { texts } from '../texts';
import { BuildBar } from './build_bar';
import { useApp, useAppState, useProject } from './context';
import { Header } from './header';
import { Notices } from './notices';
import { OutputPanel } from './output_panel';
import { ResultDialog } from './result_dialog';
import { Strip } from './strip';
import { TransitionPanel } from './transition_panel';
import { Welcome } from './welcome';
import type { Workspace } from '../state/app';

/** Whether files are being dragged over the page. */
function useFileDrop(): boolean {
    const app = useApp();
    const [over, setOver] = useState(false);
    useEffect(() => {
        const end = new AbortController();
        // A picture dragged out of the page looks like a file, too; it is none to add.
        let ours = false;
        const hasFiles = (event: DragEvent): boolean =>
            !ours && event.dataTransfer?.types.includes('Files') === true;
        const on = <Name extends keyof DocumentEventMap>(
            name: Name,
            listener: (event: DocumentEventMap[Name]) => void,
        ): void => document.addEventListener(name, listener, { signal: end.signal });
        on('dragstart', () => (ours = true));
        on('dragend', () => (ours = false));
        on('dragenter', (event) => setOver(hasFiles(event)));
        on('dragover', (event) => hasFiles(event) && event.preventDefault());
        on('dragleave', (event) => event.relatedTarget === null && setOver(false));
        on('drop', (event) => {
            setOver(false);
            if (!hasFiles(event)) return;
            event.preventDefault();
            void app.addFiles([...(event.dataTransfer?.files ?? [])]);
        });
        on('paste', (event) => {
            const files = [...(event.clipboardData?.files ?? [])];
            if (files.length > 0) void app.addFiles(files);
        });
        return () => end.abort();
    }, [app]);
    return over;
}

const workspaces: Workspace[] = ['transition', 'output'];

function Workspaces() {
    const app = useApp();
    const shown = useAppState((state) => state.workspace);
    const onKey = (event: KeyboardEvent): void => {
        if (event.key !== 'ArrowLeft' && event.key !== 'ArrowRight') return;
        const other = shown === 'output' ? 'transition' : 'output';
        app.showWorkspace(other);
        document.getElementById(`tab-${other}`)?.focus();
    };
    return (
        <main class="workspace">
            <div class="tabs" role="tablist" aria-label={texts.workspace} onKeyDown={onKey}>
                {workspaces.map((name) => (
                    <button
                        key={name}
                        id={`tab-${name}`}
                        class="tab"
                        role="tab"
                        aria-selected={shown === name}
                        aria-controls={`panel-${name}`}
                        tabIndex={shown === name ? 0 : -1}
                        onClick={() => app.showWorkspace(name)}
                    >
                        {texts[name]}
                    </button>
                ))}
            </div>
            <div id={`panel-${shown}`} class="panel" role="tabpanel" aria-labelledby={`tab-${shown}`}>
                {shown === 'transition' ? <TransitionPanel /> : <OutputPanel />}
            </div>
        </main>
    );
}

export function Page() {
    const over = useFileDrop();
    const empty = useProject().pictures.length === 0;
    return (
        <div class="page">
            <Header />
            {empty ? (
                <Welcome />
            ) : (
                <>
                    <Strip />
                    <Workspaces />
                    <BuildBar />
                    <ResultDialog />
                </>
            )}
            <Notices />
            {over && (
                <div class="drop-veil" aria-hidden="true">
                    {texts.dropHere}
                </div>
            )}
        </div>
    );
}
