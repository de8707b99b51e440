// A person with the page in a browser: looks for things by the names that are read out, clicks, types, brings
// files and takes what the page saves.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { existsSync, mkdirSync, mkdtempSync, readFileSync, readdirSync, rmSync, statSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';
import puppeteer from 'puppeteer-core';
import type { Browser, BrowserContext, ElementHandle, Page } from 'puppeteer-core';

export const root = process.env.LUMAFOLD_ROOT ?? resolve('.');
export const scratch = mkdtempSync(join(tmpdir(), 'lumafold-web-'));
process.on('exit', () => rmSync(scratch, { recursive: true, force: true }));

export const lumafold = (...words: string[]): string =>
    execFileSync(join(root, 'out/native/hosts/cli/lumafold'), words, { encoding: 'utf8' });

export const sha256 = (path: string): string => createHash('sha256').update(readFileSync(path)).digest('hex');

/** Three drawn pictures, made once. */
export function samples(): string[] {
    const folder = join(root, 'out/web/samples');
    const paths = ['dawn', 'lanterns', 'boats'].map((name) => join(folder, `${name}.png`));
    if (!paths.every(existsSync)) {
        mkdirSync(folder, { recursive: true });
        execFileSync(join(root, 'out/native/tools/samples/lumafold_samples'), [folder]);
    }
    return paths;
}

/** A bitmap file of 24 bits a pixel, full of noise; `seed` tells one from another. */
export function bitmap(width: number, height: number, seed: number): Buffer {
    const file = Buffer.alloc(54 + Math.ceil((width * 3) / 4) * 4 * height);
    file.fill(readFileSync(samples()[0]!).subarray(seed), 54);
    file.write('BM');
    const fields = [file.length, 0, 54, 40, width, height, (24 << 16) | 1];
    fields.forEach((field, index) => file.writeUInt32LE(field, 2 + 4 * index));
    file.fill(0, 30, 54);
    return file;
}

let browser: Promise<Browser> | undefined;

export async function closeBrowser(): Promise<void> {
    await (await browser)?.close();
}

export class Visit {
    private readonly told: string[] = [];
    private readonly downloads = mkdtempSync(join(scratch, 'downloads-'));

    private constructor(
        private readonly context: BrowserContext,
        readonly page: Page,
    ) {
        page.on('console', (message) => this.told.push(message.text()));
        page.on('pageerror', (error) => this.told.push(String(error)));
    }

    static async begin(look: { width?: number; dark?: boolean; still?: boolean } = {}): Promise<Visit> {
        const args = process.getuid?.() === 0 ? ['--no-sandbox'] : [];
        browser ??= puppeteer.launch({ executablePath: '/usr/bin/chromium', args });
        const context = await (await browser).createBrowserContext();
        const visit = new Visit(context, await context.newPage());
        await visit.page.setViewport({ width: look.width ?? 1440, height: 900 });
        const scheme = look.dark === true ? 'dark' : 'light';
        await visit.page.emulateMediaFeatures([
            { name: 'prefers-color-scheme', value: scheme },
            { name: 'prefers-reduced-motion', value: look.still === true ? 'reduce' : 'no-preference' },
        ]);
        const session = await visit.page.createCDPSession();
        const where = { downloadPath: visit.downloads, browserContextId: context.id! };
        await session.send('Browser.setDownloadBehavior', { behavior: 'allowAndName', ...where });
        await visit.open();
        return visit;
    }

    /** Another tab of the same browser. */
    async tab(): Promise<Visit> {
        const visit = new Visit(this.context, await this.context.newPage());
        await visit.open();
        return visit;
    }

    async open(): Promise<void> {
        await this.page.goto(`file://${root}/out/web/lumafold.html`);
        await this.find('Project and settings');
    }

    /** Nobody was to be told anything in the console. */
    async end(): Promise<void> {
        await this.context.close();
        assert.deepEqual(this.told, []);
    }

    async find(name: string, role = ''): Promise<ElementHandle<Element>> {
        const selector = `::-p-aria([name="${name}"]${role === '' ? '' : `[role="${role}"]`})`;
        return (await this.page.waitForSelector(selector, { timeout: 180_000 }))!;
    }

    async click(name: string, role = ''): Promise<void> {
        await (await this.find(name, role)).click();
    }

    async menu(item: string): Promise<void> {
        await this.click('Project and settings');
        await this.click(item);
    }

    async choose(action: () => Promise<void>, paths: string[]): Promise<void> {
        const [chooser] = await Promise.all([this.page.waitForFileChooser(), action()]);
        await chooser.accept(paths);
    }

    /** Adds pictures, and waits until as many stand in the strip. */
    async add(paths: string[], count = paths.length): Promise<void> {
        await this.choose(() => this.click('Add pictures', 'button'), paths);
        await this.page.waitForFunction(
            (all) =>
                document.querySelectorAll('.picture').length === all &&
                !document.querySelector('.strip-end p'),
            { timeout: 180_000 },
            count,
        );
    }

    /** Waits for the whole animation, and tells the size that the page shows. */
    async built(): Promise<string> {
        await this.find('Show and save');
        return this.text('.file-size');
    }

    text(selector: string): Promise<string> {
        return this.page.$eval(selector, (element) => element.textContent ?? '');
    }

    /** The names of pictures or gaps in their order. */
    names(selector: '.picture' | '.gap'): Promise<string[]> {
        return this.page.$$eval(selector, (all) => all.map((one) => one.getAttribute('aria-label') ?? ''));
    }

    /** Does what saves a file, and waits until it is there whole. */
    async saved(action: () => Promise<void>): Promise<string> {
        const before = new Set(readdirSync(this.downloads));
        await action();
        for (let tries = 0; tries < 600; tries++) {
            const added = readdirSync(this.downloads).filter((name) => !before.has(name));
            const path = join(this.downloads, added.find((name) => !/crdownload|^\./.test(name)) ?? '');
            if (path !== this.downloads && statSync(path).size > 0) return path;
            await sleep(50);
        }
        throw new Error('nothing was saved');
    }

    /** Builds by the button, and saves the file. */
    async savedAnimation(): Promise<string> {
        await this.built();
        await this.click('Show and save');
        await this.page.waitForSelector('.dialog[open] .finished');
        const path = await this.saved(() => this.page.click('.dialog .button.primary'));
        await this.click('Close');
        return path;
    }

    /** In pixels, by this way of coming to it. */
    async setSize(way: string, width: string, height: string): Promise<void> {
        await this.click(way, 'radio');
        await this.setNumber('Width', width);
        await this.setNumber('Height', height);
    }

    /** Until all transitions play the chosen gap. */
    async tiles(): Promise<void> {
        await this.page.waitForFunction(() => document.querySelectorAll('.tile canvas').length === 33);
    }

    async setNumber(name: string, value: string): Promise<void> {
        const field = await this.find(name, 'spinbutton');
        await field.click({ count: 3 });
        await this.page.keyboard.type(value);
        await this.page.keyboard.press('Enter');
        await this.page.keyboard.press('Tab');
    }
}
