// The conditions of the libraries inside the page, in a dialog.
import { useLayoutEffect, useRef } from 'preact/hooks';
import { texts } from '../texts';

export function Licences({ onClose }: { onClose(): void }) {
    const dialog = useRef<HTMLDialogElement>(null);
    useLayoutEffect(() => dialog.current?.showModal(), []);
    return (
        <dialog ref={dialog} class="dialog" aria-label={texts.licences} onClose={onClose}>
            <pre class="licences" tabIndex={0}>
                {document.getElementById('licences')?.textContent?.trim()}
            </pre>
            <div class="dialog-actions">
                <button class="button" onClick={() => dialog.current?.close()}>
                    {texts.close}
                </button>
            </div>
        </dialog>
    );
}
