// What happened and what went wrong, with a way back where there is one.
import { texts } from '../texts';
import { useApp, useAppState } from './context';
import { Icon } from './icons';

export function Notices() {
    const app = useApp();
    const notices = useAppState((state) => state.notices);
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
                                app.dismiss(notice.id);
                            }}
                        >
                            {texts.undo}
                        </button>
                    )}
                    <button
                        class="button quiet small"
                        aria-label={texts.dismiss}
                        onClick={() => app.dismiss(notice.id)}
                    >
                        <Icon name="close" />
                    </button>
                </div>
            ))}
        </div>
    );
}
