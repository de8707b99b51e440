// Where the focus goes when what had it is gone.

/** Once the page has been drawn again; the first of the selectors that fits something counts. */
export function focusNext(...selectors: string[]): void {
    requestAnimationFrame(() => {
        const found = selectors.map((one) => document.querySelector<HTMLElement>(one));
        found.find((element) => element !== null)?.focus();
    });
}
