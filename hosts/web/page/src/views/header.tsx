// The name, and a menu for whole projects and settings files.
import { useEffect, useRef, useState } from 'preact/hooks';
import { texts } from '../texts';
import { ChooseFiles } from './choose_files';
import { useApp, useProject } from './context';
import { Icon } from './icons';
import { Licences } from './licences';
import { saveBlob } from './saving';

function Menu() {
    const app = useApp();
    const details = useRef<HTMLDetailsElement>(null);
    const [licences, setLicences] = useState(false);
    const close = (): void => details.current?.removeAttribute('open');
    /** What has the focus in the list is no longer seen. */
    const leave = (): void => {
        close();
        details.current?.querySelector('summary')?.focus();
    };
    useEffect(() => {
        const outside = (event: Event): void => {
            if (!details.current?.contains(event.target as Node)) close();
        };
        document.addEventListener('pointerdown', outside);
        return () => document.removeEventListener('pointerdown', outside);
    }, []);
    const act = (what: () => void) => () => {
        leave();
        what();
    };
    const exportSettings = async (): Promise<void> => saveBlob(await app.settingsFile(), 'LUMAFOLD.INI');
    return (
        <>
            <details ref={details} class="menu" onKeyDown={(event) => event.key === 'Escape' && leave()}>
                <summary class="button quiet" aria-label={texts.more} title={texts.more}>
                    <Icon name="menu" />
                </summary>
                <div class="menu-list">
                    <button class="menu-item" onClick={act(() => app.emptyProject())}>
                        {texts.newProject}
                    </button>
                    <ChooseFiles
                        class="menu-item"
                        accept=".lumafold"
                        onFiles={(files) => act(() => void app.openProject(files[0]!))()}
                    >
                        {texts.openProject}
                    </ChooseFiles>
                    <button
                        class="menu-item"
                        onClick={act(() => saveBlob(app.projectFile(), 'animation.lumafold'))}
                    >
                        {texts.saveProject}
                    </button>
                    <hr />
                    <ChooseFiles
                        class="menu-item"
                        accept=".ini"
                        onFiles={(files) => act(() => void app.importSettings(files[0]!))()}
                    >
                        {texts.importSettings}
                    </ChooseFiles>
                    <button class="menu-item" onClick={act(() => void exportSettings())}>
                        {texts.exportSettings}
                    </button>
                    <hr />
                    <button class="menu-item" onClick={act(() => setLicences(true))}>
                        {texts.licences}
                    </button>
                </div>
            </details>
            {licences && <Licences onClose={() => setLicences(false)} />}
        </>
    );
}

export function Logo() {
    return (
        <svg class="logo" viewBox="0 0 32 32" aria-hidden="true">
            <path class="logo-front" d="M4 7l12-4v22L4 29z" />
            <path class="logo-back" d="M28 7L16 3v22l12 4z" />
        </svg>
    );
}

export function Header() {
    const app = useApp();
    const empty = useProject().pictures.length === 0;
    return (
        <header class="header">
            <Logo />
            <h1>{texts.name}</h1>
            <span class="stretch" />
            {!empty && (
                <ChooseFiles class="button" multiple onFiles={(files) => void app.addFiles(files)}>
                    <Icon name="add" />
                    <span>{texts.add}</span>
                </ChooseFiles>
            )}
            <Menu />
        </header>
    );
}
