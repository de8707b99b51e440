// What happened and what went wrong, with a way back where there is one.
import { texts } from '../texts';
import { useApp, useAppState } from './context';
import { focusNext } from './focus';
import { Icon } from './icons';

export function Notices() {
    const app = useApp();
    const notices = useAppState((state) => state.notices);
    const leave = (id: number): void => {
        app.dismiss(id);
        focusNext('.notice button', '.gap[aria-pressed=true]', '.picture', '.drop-zone button');
    };
    return (
        <div class="notices" role="status" aria-live="polite">
            {notices.map((notice) => (
                <div key={notice.id} class={`notice ${notice.kind}`}>
                    <span>{notice.text}</span>
                    {notice.undo !== undefined && (
                        <button
                            class="button small"
                            onClick={() => {
                                notice.undo?.();
                                leave(notice.id);
                            }}
                        >
                            {texts.undo}
                        </button>
                    )}
                    <button
                        class="button quiet small"
                        aria-label={texts.dismiss}
                        onClick={() => leave(notice.id)}
                    >
                        <Icon name="close" />
                    </button>
                </div>
            ))}
        </div>
    );
}
