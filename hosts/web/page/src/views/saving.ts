// Files from the page to the person's disk.
export function saveBlob(file: Blob, name: string): void {
    const link = document.createElement('a');
    link.href = URL.createObjectURL(file);
    link.download = name;
    link.click();
    // The browser reads it in its own time.
    setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}
