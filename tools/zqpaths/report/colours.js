'use strict';
// Colours of the maps, for light and dark pages. Each piece of the folder in view has a hue, which
// all below it share. One that holds most of the folder is grey and leaves the hues to its pieces,
// so that a map has several colours wherever the files are:
//
//     usr 97 %        grey
//       share 40 %    blue, and all below it
//       lib 38 %      orange
//     etc 3 %         green

const colours = (() => {
    const dark = window.matchMedia('(prefers-color-scheme: dark)');
    // Neighbours in size are far apart in hue.
    const hues = [250, 65, 155, 15, 300, 110, 205, 345, 85, 275, 180, 40];
    const isMost = 0.5;

    class Hue {
        constructor(total, angle) {
            this.total = total;  // files of the folder in view
            this.angle = angle;  // in degrees, null for grey
        }

        ofPiece(piece, index) {
            if (this.angle !== null) return this;
            const isGrey = piece.kind === 'folder' && piece.value > isMost * this.total &&
                piece.end.children.length > 1;
            return new Hue(this.total, isGrey ? null : hues[index % hues.length]);
        }
    }

    /** The fill of what is drawn of a piece: of folders, those further down are stronger. */
    function fillOf({piece, hue, level}) {
        const isFolder = piece.kind === 'folder';
        const chroma = hue.angle === null ? 3 : isFolder ? 19 + 5 * level : 7;
        const lightness = dark.matches
            ? 24 + (isFolder ? 7 : 5) * level
            : 95 - (isFolder ? 6 : 3.5) * level;
        return d3.hcl(hue.angle === null ? 250 : hue.angle, chroma, lightness).toString();
    }

    const inkOnFill = () => dark.matches ? '#f4f6fa' : '#18202c';

    return {
        hueOf: total => new Hue(total, null),
        fillOf,
        inkOnFill,
        onChange: listener => dark.addEventListener('change', listener),
    };
})();
