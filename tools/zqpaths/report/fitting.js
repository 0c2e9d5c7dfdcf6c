'use strict';
// Text that is cut to the room there is for it.

const fitting = (() => {
    const context = document.createElement('canvas').getContext('2d');
    const family = getComputedStyle(document.documentElement).fontFamily;

    function widthOf(text, font) {
        context.font = font + ' ' + family;
        return context.measureText(text).width;
    }

    /** The front of a text that fits into `width` pixels, with a mark; nothing if that says little. */
    function cut(text, width, font = '12px') {
        if (text.length < 200 && widthOf(text, font) <= width) return text;
        const characters = Array.from(text.slice(0, 400));
        let low = 0;
        let high = characters.length;
        while (low < high) {
            const middle = (low + high + 1) >> 1;
            if (widthOf(characters.slice(0, middle).join('') + '…', font) <= width) low = middle;
            else high = middle - 1;
        }
        return low < 2 ? '' : characters.slice(0, low).join('') + '…';
    }

    /** The name of a piece: of folders cut, of others a shorter one, as a number cut is another. */
    function nameOf(piece, width, font = '12px') {
        if (piece.kind === 'folder') return cut(piece.name, width, font);
        return [piece.name, piece.short, ''].find(name => widthOf(name, font) <= width);
    }

    return {cut, nameOf, widthOf};
})();
