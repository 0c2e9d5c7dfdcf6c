'use strict';
// The folders of the set as the page's data have them, and what a folder consists of:
//
//     folders.top.files;                // all files of the set
//     folders.piecesOf(folders.top);    // [{kind, name, value, ...}, ...], largest first
//
// Only the largest folders are among the data; the others are summed up as a piece of the folder
// that they are in. A folder that holds nothing but another one is passed over: its name stands
// before that of the other.

const folders = (() => {
    const data = JSON.parse(document.getElementById('data').textContent);
    const all = data.names.map((name, id) => ({
        id, name, files: data.files[id], filesIn: data.filesIn[id],
        foldersBelow: data.foldersBelow[id], parent: null, children: [],
    }));
    for (const folder of all.slice(1)) {
        folder.parent = all[data.parents[folder.id]];
        folder.parent.children.push(folder);
    }

    const isPassedOver = folder =>
        folder.children.length > 0 && folder.children[0].files === folder.files;

    /** Where one comes to who goes into a folder. */
    function endOf(folder) {
        while (isPassedOver(folder)) folder = folder.children[0];
        return folder;
    }

    /** The last folder above that is not passed over, null for what holds all. */
    function outOf(folder) {
        let out = folder.parent;
        while (out && isPassedOver(out)) out = out.parent;
        return out;
    }

    function joined(names) {
        return names.reduce((path, name) => path + (path === '' || path.endsWith('/') ? '' : '/') + name, '');
    }

    /** The names from below `above` down to a folder, above all that of the set if there is none. */
    function nameBelow(above, folder) {
        const names = [];
        for (let at = folder; at && at !== above; at = at.parent) names.push(at.name);
        return joined(names.reverse()) || data.set;
    }

    /** The path of a folder, without its front if it is longer than `most` characters. */
    function pathOf(folder, most = 2000) {
        const names = [];
        let length = 0;
        let at = folder;
        for (; at && length < most; at = at.parent) {
            names.push(at.name);
            length += at.name.length + 1;
        }
        if (at) names.push('…');
        return joined(names.reverse()) || data.set;
    }

    const number = d3.format(',');
    const counted = (count, one, many = one + 's') => number(count) + ' ' + (count === 1 ? one : many);

    const sumOf = (list, value) => list.reduce((sum, item) => sum + value(item), 0);

    /** Files right in a folder. */
    function filesOf(count) {
        return {kind: 'files', name: counted(count, 'file'), short: 'files', count: 0, files: count, value: count};
    }

    /** What is not shown on its own: so many folders with all files in them, and files beside them. */
    function restOf(count, files, value) {
        const name = counted(count, 'more folder') + (files > 0 ? ', ' + counted(files, 'file') : '');
        return {kind: 'rest', name, short: 'the rest', count, files, value};
    }

    function piecesOf(folder) {
        const pieces = folder.children.map(child => {
            const end = endOf(child);
            return {
                kind: 'folder', end, name: nameBelow(folder, end),
                count: child.foldersBelow + 1, files: 0, value: child.files,
            };
        });
        if (folder.filesIn > 0) pieces.push(filesOf(folder.filesIn));
        const left = folder.files - folder.filesIn - sumOf(folder.children, child => child.files);
        if (left > 0) {
            const shown = sumOf(folder.children, child => child.foldersBelow + 1);
            pieces.push(restOf(folder.foldersBelow - shown, 0, left));
        }
        return pieces.sort((a, b) => b.value - a.value);
    }

    /**
     * The pieces, with all that are less than `least` in place of them as one rest, so that nothing
     * is drawn that cannot be seen.
     */
    function seenPieces(pieces, least) {
        const isSmall = piece => piece.value < least;
        if (pieces.filter(isSmall).length < 2) return pieces;
        const isSummed = piece => isSmall(piece) || piece.kind === 'rest';
        const summed = pieces.filter(isSummed);
        const rest = restOf(sumOf(summed, piece => piece.count), sumOf(summed, piece => piece.files),
            sumOf(summed, piece => piece.value));
        return pieces.filter(piece => !isSummed(piece)).concat(rest);
    }

    return {
        data, all, top: all[0], endOf, outOf, nameBelow, pathOf, piecesOf, seenPieces, number, counted,
    };
})();
