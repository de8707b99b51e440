import assert from 'node:assert/strict';
import { mkdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { gzipSync } from 'node:zlib';
import axe from 'axe-core';
import { Visit, bitmap, closeBrowser, lumafold, root, samples, scratch, sha256 } from './visit';

after(closeBrowser);

const put = (name: string, bytes: string | Buffer): string => {
    const path = join(scratch, name);
    writeFileSync(path, bytes);
    return path;
};

/** Builds what the page was told to, by the command line. */
function expected(suffix: string, ...options: string[]): string {
    const [dawn, lanterns, boats] = samples() as [string, string, string];
    const path = join(scratch, `expected${suffix}`);
    const gaps = ['--transition', 'Submerge', dawn, '--transition', 'Soft iris (diamond)', lanterns];
    lumafold('build', '-q', '-o', path, '--delay', '8', ...options, ...gaps, '--transition', 'Burp', boats);
    return sha256(path);
}

test('the page is one small file', () => {
    const page = readFileSync(join(root, 'out/web/lumafold.html'));
    assert.ok(page.length <= 1_500_000, `${page.length} bytes`);
    const packed = gzipSync(page, { level: 9 }).length;
    assert.ok(packed <= 600_000, `${packed} bytes packed`);
});

test('three files become the very bytes of the command line, as each kind of file', async () => {
    const visit = await Visit.begin();
    await visit.add(samples());
    for (const [index, transition] of ['Submerge', 'Soft iris (diamond)', 'Burp'].entries()) {
        await (await visit.page.$$('.gap'))[index]!.click();
        await visit.click(transition, 'radio');
        await visit.setNumber('Each frame in between', '0.08');
    }
    assert.match((await visit.names('.gap')).join(), /: Submerge,.*: Soft iris \(diamond\),.*: Burp$/);
    await visit.click('Output', 'tab');
    const reduced = ['--no-dither', '--set', 'TransitionCustompalette=0'];
    const saves = async (suffix: string, ...options: string[]): Promise<void> =>
        assert.equal(sha256(await visit.savedAnimation()), expected(suffix, ...options));
    await saves('.gif');
    await visit.click('Dither', 'switch');
    await visit.click('Custom palette', 'switch');
    await saves('.gif', ...reduced);
    await visit.click('Animated PNG', 'radio');
    await visit.click('True color', 'switch');
    await saves('.png', '--true-colour');
    await visit.click('MNG', 'radio');
    await visit.click('True color', 'switch');
    await saves('.mng', ...reduced);
    await visit.click('WebP', 'radio');
    await saves('.webp');
    await visit.end();
});

/** A picture of 8 by 6 pixels that no codec of the engine's reads. */
const avif =
    'AAAAHGZ0eXBhdmlmAAAAAGF2aWZtaWYxbWlhZgAAAOptZXRhAAAAAAAAACFoZGxyAAAAAAAAAABwaWN0AAAA' +
    'AAAAAAAAAAAAAAAAAA5waXRtAAAAAAABAAAAImlsb2MAAAAAREAAAQABAAAAAAEOAAEAAAAAAAAAIgAAACNp' +
    'aW5mAAAAAAABAAAAFWluZmUCAAAAAAEAAGF2MDEAAAAAamlwcnAAAABLaXBjbwAAABNjb2xybmNseAACAAIA' +
    'BoAAAAAMYXYxQ4EADAAAAAAUaXNwZQAAAAAAAAAIAAAABgAAABBwaXhpAAAAAAMICAgAAAAXaXBtYQAAAAAA' +
    'AAABAAEEgYIDhAAAACptZGF0EgAKCBgIvWCBAQNCMhQbABpppoUAA1Y66OXXx+bQTIfvQA==';

test('pictures are pasted, and those that only the browser reads are read by it', async () => {
    const visit = await Visit.begin();
    const paste = (times: number): Promise<void> =>
        visit.page.evaluate(
            async (packed, count) => {
                const canvas = new OffscreenCanvas(1600, 1200);
                canvas.getContext('2d')!.fillRect(1, 1, 3, 3);
                const clipboardData = new DataTransfer();
                clipboardData.items.add(
                    new File([await canvas.convertToBlob()], 'pasted.png', { type: 'image/png' }),
                );
                clipboardData.items.add(
                    new File(
                        [Uint8Array.from(atob(packed), (letter) => letter.charCodeAt(0))],
                        'pasted.avif',
                    ),
                );
                const svg = '<svg xmlns="http://www.w3.org/2000/svg" width="30" height="20"/>';
                clipboardData.items.add(new File([svg], 'pasted.svg', { type: 'image/svg+xml' }));
                for (let time = 0; time < count; time++) {
                    document.dispatchEvent(new ClipboardEvent('paste', { clipboardData, bubbles: true }));
                }
            },
            avif,
            times,
        );
    const pictures = (count: number) =>
        visit.page.waitForFunction((all) => document.querySelectorAll('.picture').length === all, {}, count);
    await paste(1);
    await pictures(3);
    assert.match(
        (await visit.names('.picture')).join(),
        /pasted\.png, 1600 × 1200.*pasted\.avif, 8 × 6.*pasted\.svg, 30 × 20/,
    );
    // The finished animation, dragged and let go over the page, is no picture to add; one pasted there is.
    await visit.built();
    await visit.click('Show and save');
    const shown = await visit.page.waitForSelector('.dialog[open] .finished');
    const { x, y } = (await shown!.boundingBox())!;
    await visit.page.mouse.move(x + 4, y + 3);
    await visit.page.mouse.down();
    await visit.page.mouse.move(60, 600, { steps: 10 });
    await visit.page.mouse.up();
    await paste(1);
    await pictures(6);
    assert.match((await visit.names('.picture')).join(), /(.*pasted\.png.*pasted\.avif){2}/);
    assert.equal(await visit.page.$('.dialog[open]'), null);
    // Twelve times at once: what one of them does must not end what another waits for.
    await paste(12);
    await pictures(42);
    await visit.end();
});

test('pictures are sorted by mouse and keyboard, removed and brought back, and kept over a reload', async () => {
    const visit = await Visit.begin();
    await visit.add(samples());
    const order = async (): Promise<string> =>
        (await visit.names('.picture')).map((name) => name.replace(/.*: (\w+)\.png.*/, '$1')).join(' ');
    assert.equal(await order(), 'dawn lanterns boats');
    const [first, , third] = await visit.page.$$('.picture');
    const from = (await first!.boundingBox())!;
    const to = (await third!.boundingBox())!;
    await visit.page.mouse.move(from.x + 40, from.y + 60);
    await visit.page.mouse.down();
    await visit.page.mouse.move(from.x + 80, from.y + 60, { steps: 5 });
    await visit.page.mouse.move(to.x + 120, to.y + 60, { steps: 15 });
    // The others glide aside first, as a person sees before letting go.
    await new Promise((resolve) => setTimeout(resolve, 400));
    await visit.page.mouse.move(to.x + 130, to.y + 62, { steps: 5 });
    await new Promise((resolve) => setTimeout(resolve, 400));
    await visit.page.mouse.up();
    await visit.page.waitForFunction(() =>
        document.querySelector('.picture')?.ariaLabel?.includes('lanterns'),
    );
    assert.equal(await order(), 'lanterns boats dawn');
    await (await visit.page.$('.picture'))!.focus();
    await visit.page.keyboard.down('Alt');
    await visit.page.keyboard.press('ArrowRight');
    await visit.page.keyboard.up('Alt');
    assert.equal(await order(), 'boats lanterns dawn');
    const focused = (name: string) =>
        visit.page.waitForFunction((one) => document.activeElement?.ariaLabel?.includes(one), {}, name);
    await focused('2 of 3: lanterns');
    await visit.page.keyboard.press('Delete');
    assert.equal(await order(), 'boats dawn');
    await focused('2 of 2: dawn');
    await visit.click('Undo');
    assert.equal(await order(), 'boats lanterns dawn');
    await focused('from dawn.png to boats.png');
    const kept = (): Promise<void> => new Promise((done) => setTimeout(done, 1500));
    await kept();
    // Another tab that empties the project takes no picture from this one.
    const other = await visit.tab();
    assert.equal((await other.names('.picture')).length, 3);
    await other.menu('New');
    await kept();
    await visit.page.bringToFront();
    await visit.click('Use for all');
    await visit.find('Undo');
    await visit.click('Output', 'tab');
    await visit.click('Dither', 'switch');
    assert.equal(await visit.text('.notices'), '');
    const size = await visit.built();
    await visit.click('Dither', 'switch');
    await kept();
    // The last change is kept even if the page goes at once.
    await visit.click('Dither', 'switch');
    await visit.open();
    assert.equal(await order(), 'boats lanterns dawn');
    assert.equal(await visit.built(), size);
    const project = await visit.saved(() => visit.menu('Save the project'));
    await visit.menu('New');
    await visit.find('Try it with three sample pictures', 'button');
    await focused('Project and settings');
    await visit.choose(() => visit.menu('Open a project…'), [project]);
    assert.equal(await visit.built(), size);
    // Two damaged ones: what is out of range is brought into it, and what is no project is not opened.
    const text = readFileSync(project, 'latin1');
    const [signature = '', head = ''] = text.split('\n', 2);
    const damaged = JSON.parse(head);
    delete damaged.project.pictures[0].gap;
    damaged.project.pictures[1].gap = { transition: 99, pause: -1, delay: 'long' };
    Object.assign(damaged.project.settings, { TransitionIrisStep: 4294967295, TransitionDither: 'yes' });
    Object.assign(damaged.project, { canvas: { mode: 'cover', width: -5, height: 70000 }, quality: -5000 });
    const files = text.slice(signature.length + head.length + 2);
    const reopened = [`${signature}\n{}\n`, `${signature}\n${JSON.stringify(damaged)}\n${files}`];
    for (const [index, bytes] of reopened.entries()) {
        const path = put(`damaged${index}.lumafold`, Buffer.from(bytes, 'latin1'));
        await visit.choose(() => visit.menu('Open a project…'), [path]);
        await visit.page.waitForSelector(index === 0 ? '.notice.error' : '.gap[aria-label$="Unplugged TV"]');
    }
    await visit.click('Output', 'tab');
    assert.match(await visit.text('.notice.error'), /damaged0\.lumafold was not opened/);
    await visit.page.waitForFunction(() => document.body.textContent?.includes('1 × 4096 pixels'));
    await visit.built();
    await visit.end();
});

test('settings come and go in the form of the plug-in', async () => {
    const visit = await Visit.begin();
    const given = join(scratch, 'given.ini');
    const changes = ['--set', 'TransitionIrisStep=9', '--set', 'TransitionMattcolour=255'];
    lumafold('settings', ...changes, '--write', given);
    await visit.choose(() => visit.menu('Import LUMAFOLD.INI…'), [given]);
    await visit.page.waitForFunction(() =>
        document.querySelector('.notices')?.textContent?.includes('taken over'),
    );
    const taken = await visit.saved(() => visit.menu('Export LUMAFOLD.INI'));
    const withoutTime = (path: string): string => readFileSync(path, 'latin1').replace(/;Last updated.*/, '');
    assert.equal(withoutTime(taken), withoutTime(given));
    await visit.end();
});

test('a preview follows its slider, and all 33 play the chosen gap', async (t) => {
    const visit = await Visit.begin();
    await visit.click('Try it with three sample pictures', 'button');
    await visit.built();
    await visit.tiles();
    const sizes = await visit.page.$$eval('.tile canvas', (all) =>
        all.map((one) => `${one.getAttribute('width')}x${one.getAttribute('height')}`),
    );
    assert.deepEqual(new Set(sizes), new Set(['120x80']));
    await visit.page.click('.play');
    const milliseconds = await visit.page.evaluate(async () => {
        const slider = document.querySelector<HTMLInputElement>('.gap-settings input[type=range]')!;
        const shown = (): string =>
            document.querySelector<HTMLCanvasElement>('.large-preview canvas')!.toDataURL();
        const before = shown();
        const began = performance.now();
        slider.value = '13';
        slider.dispatchEvent(new Event('input', { bubbles: true }));
        while (shown() === before) {
            if (performance.now() - began > 10_000) throw new Error('the preview stays as it was');
            await new Promise((next) => setTimeout(next, 4));
        }
        return performance.now() - began;
    });
    t.diagnostic(`the preview answered after ${milliseconds.toFixed(0)} ms`);
    await visit.click('Surprise me');
    await visit.setNumber('Seed', '77');
    const drawn = await visit.names('.gap');
    await visit.click('Use for all');
    assert.notDeepEqual(await visit.names('.gap'), drawn);
    await visit.setNumber('Seed', '5');
    await visit.setNumber('Seed', '77');
    assert.deepEqual(await visit.names('.gap'), drawn);
    await visit.end();
});

test('a frame is compared with its full colour, pixel by pixel, and nothing moves unasked', async () => {
    const visit = await Visit.begin({ still: true });
    // No frame is shown for as long as the build in full colour takes.
    const quick = join(scratch, 'quick.ini');
    const changes = ['Type=13', 'Pause=2', 'Delay=2'].flatMap((change) => ['--set', `Transition${change}`]);
    lumafold('settings', ...changes, '--write', quick);
    await visit.choose(() => visit.menu('Import LUMAFOLD.INI…'), [quick]);
    await visit.find('Undo');
    await visit.add(samples());
    await visit.click('Output', 'tab');
    await visit.setSize('Cropped', '640', '480');
    await visit.built();
    await visit.page.waitForSelector('.frame');
    assert.equal(await visit.text('.frame-number'), 'Frame 1 of 78');
    await (await visit.find('Play')).press('Enter');
    await visit.click('Compare with full colour', 'switch');
    await visit.page.waitForSelector('.frame.full');
    await (await visit.find('Pause')).press('Enter');
    await visit.click('4×', 'radio');
    const colours = await visit.page.$$eval('.frame', (canvases) =>
        canvases.map((one) => {
            const canvas = one as HTMLCanvasElement;
            const { data } = canvas.getContext('2d')!.getImageData(0, 0, canvas.width, canvas.height);
            return new Set(new Uint32Array(data.buffer)).size;
        }),
    );
    assert.ok(colours[0]! <= 256 && colours[1]! > 5000, colours.join());
    await visit.click('Show and save');
    await visit.page.waitForSelector('canvas.finished');
    // There is one behind the dialog, too.
    await (await visit.page.waitForSelector('.dialog ::-p-aria(Play)'))!.click();
    await visit.page.waitForSelector('img.finished');
    await visit.end();
});

const ticks = (visit: Visit): Promise<number> =>
    visit.page.evaluate(async () => {
        let count = 0;
        const timer = setInterval(() => count++, 10);
        await new Promise((done) => setTimeout(done, 1000));
        clearInterval(timer);
        return count;
    });

test('a build is cancelled in the middle, the page never stalls, and it builds again', async (t) => {
    const visit = await Visit.begin();
    await visit.add(samples());
    const size = await visit.built();
    await visit.click('Output', 'tab');
    await visit.setSize('Cropped', '2000', '1500');
    await visit.click('Build', 'button');
    await visit.find('Cancel');
    const building = await ticks(visit);
    await visit.click('Cancel');
    await visit.find('Build');
    const idle = await ticks(visit);
    t.diagnostic(`a 10 ms timer ticked ${building} times in a second of building, ${idle} in one of rest`);
    assert.ok(building > 0.7 * idle);
    await visit.click('As they are', 'radio');
    assert.equal(await visit.built(), size);
    await visit.end();
});

test('what cannot be read or built is told, and nothing is lost', async () => {
    const visit = await Visit.begin();
    const [dawn] = samples() as [string];
    const cut = put('cut.png', readFileSync(dawn).subarray(0, 5000));
    const notes = ['a', 'b', 'c', 'd', 'e'].map((name) => put(`${name}.txt`, 'This is no picture.'));
    const heic = put('photo.heic', '\0\0\0\x1cftypheic\0\0\0\0mif1heic');
    await visit.add([cut, dawn, ...notes, heic], 1);
    await visit.page.waitForSelector('.notice');
    const notices = await visit.text('.notices');
    assert.match(
        notices,
        /^cut\.png was not.*\. a\.txt, .*e\.txt were not added: .*PNG, JPEG, .*photo\.heic .*HEIC.*PNG, JPEG, /,
    );
    const second = put('second.bmp', bitmap(300, 200, 1));
    await visit.add([second], 2);
    rmSync(second);
    await visit.built();
    await visit.click('Output', 'tab');
    await visit.setSize('Whole', '4096', '4096');
    await visit.click('Build', 'button');
    await visit.page.waitForSelector('.dialog .error', { timeout: 180_000 });
    assert.match(await visit.text('.dialog .error'), /not enough memory/);
    await visit.click('Close');
    assert.equal((await visit.names('.picture')).length, 2);
    await visit.setSize('Whole', '200', '200');
    for (const refused of ['0', '-5', 'e']) await visit.setNumber('Width', refused);
    assert.equal(await visit.page.$eval('.side input', (field) => (field as HTMLInputElement).value), '200');
    await visit.built();
    // The build in full colour goes wrong, and no other.
    await visit.page.evaluate(() => {
        const post = Worker.prototype.postMessage;
        Worker.prototype.postMessage = function (order) {
            const { take } = order;
            if (take?.fullColour && take.lengthPercent === 100) take.kind = 'none';
            post.call(this, order);
        };
    });
    await visit.click('Compare with full colour', 'switch');
    await visit.page.waitForSelector('.inspector .error');
    await visit.end();
});

test('photos of 12 megapixels and sixty pictures are no trouble', async (t) => {
    const visit = await Visit.begin();
    const photos = [1, 2].map((seed) => put(`photo${seed}.bmp`, bitmap(4000, 3000, seed)));
    const began = Date.now();
    await visit.add(photos);
    await visit.built();
    t.diagnostic(`two photos were read and built in ${Date.now() - began} ms`);
    await visit.click('Output', 'tab');
    assert.match(await visit.text('.output-settings'), /640 × 480 pixels/);
    const many = Array.from({ length: 60 }, (_, index) => put(`${index}.bmp`, bitmap(96, 72, index)));
    // Those that are still being read are not for the new project.
    await visit.choose(() => visit.click('Add pictures', 'button'), many);
    await visit.page.waitForSelector('.strip-end p');
    await visit.menu('New');
    await visit.add(many, 60);
    await visit.click('Transition', 'tab');
    await visit.built();
    assert.equal((await visit.names('.gap')).length, 60);
    await visit.end();
});

test('no rule of accessibility is broken, and nothing is wider than the screen', async () => {
    const folder = join(root, 'out/web/screenshots');
    mkdirSync(folder, { recursive: true });
    for (const width of [360, 800, 1440]) {
        for (const dark of [false, true]) {
            const visit = await Visit.begin({ width, dark });
            const look = async (name: string): Promise<void> => {
                const file = `${name}-${width}-${dark ? 'dark' : 'light'}.png` as const;
                await visit.page.screenshot({ path: `${folder}/${file}` });
                const fits = (): boolean => document.documentElement.scrollWidth <= innerWidth;
                assert.ok(await visit.page.evaluate(fits), name);
                await visit.page.evaluate(axe.source);
                const { violations } = await visit.page.evaluate(() =>
                    (window as unknown as { axe: typeof axe }).axe.run(),
                );
                const told = violations.map(({ id, nodes }) => [name, id, nodes[0]?.html]);
                assert.deepEqual(told, []);
            };
            await look('welcome');
            await visit.click('Try it with three sample pictures', 'button');
            await visit.built();
            await visit.tiles();
            await look('transition');
            await visit.click('Output', 'tab');
            await visit.page.waitForSelector('.frame');
            await look('output');
            await visit.menu('Licenses of the libraries inside');
            await look('licenses');
            await visit.click('Close', 'button');
            await visit.click('Show and save');
            await visit.page.waitForSelector('.finished');
            await look('result');
            await visit.end();
        }
    }
});
