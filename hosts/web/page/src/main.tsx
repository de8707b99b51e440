// Starts the page: the engine's tables and what was kept, then the views.
import { render } from 'preact';
import { App } from './state/app';
import { texts } from './texts';
import { AppContext } from './views/context';
import { Page } from './views/page';

const place = document.getElementById('app')!;

App.start().then(
    (app) => {
        window.addEventListener('unhandledrejection', (event) => {
            event.preventDefault();
            app.complainOf(event.reason);
        });
        render(
            <AppContext.Provider value={app}>
                <Page />
            </AppContext.Provider>,
            place,
        );
    },
    (error: Error) => render(<p class="start-failed">{texts.failedToStart(error.message)}</p>, place),
);
