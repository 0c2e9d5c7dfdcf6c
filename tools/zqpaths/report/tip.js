'use strict';
// What is told about a piece that is pointed at, or that has the focus.

const tip = (() => {
    const box = document.getElementById('tip');
    const share = d3.format('.1f');

    function linesOf(piece, current) {
        const {top, number, counted} = folders;
        const lines = [counted(piece.value, 'file') + (piece.kind === 'folder' && piece.end.foldersBelow > 0
            ? ' in ' + counted(piece.end.foldersBelow + 1, 'folder') : '')];
        lines.push(share(100 * piece.value / current.files) + ' % of ' + folders.nameBelow(folders.outOf(current), current));
        if (current.files !== top.files)
            lines.push(share(100 * piece.value / top.files) + ' % of all ' + number(top.files));
        return lines;
    }

    const titleOf = piece => piece.kind === 'folder' ? folders.pathOf(piece.end, 300) : piece.name;

    function show(piece, current, x, y) {
        box.textContent = '';
        const title = document.createElement('strong');
        title.className = 'name';
        title.textContent = titleOf(piece);
        box.append(title);
        for (const line of linesOf(piece, current)) {
            const row = document.createElement('span');
            row.textContent = line;
            box.append(row);
        }
        box.hidden = false;
        const {width, height} = box.getBoundingClientRect();
        box.style.left = Math.max(4, Math.min(x + 14, window.innerWidth - width - 8)) + 'px';
        box.style.top = (y + 18 + height > window.innerHeight ? Math.max(4, y - height - 12) : y + 18) + 'px';
    }

    const hide = () => { box.hidden = true; };

    /** The same for who hears it. */
    const textOf = (piece, current) => [titleOf(piece), ...linesOf(piece, current)].join(', ');

    return {show, hide, textOf};
})();
