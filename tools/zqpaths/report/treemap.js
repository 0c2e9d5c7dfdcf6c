'use strict';
// The treemap: a rectangle for each piece of a folder, its area in proportion to the files; in those
// of folders that are large enough, their own pieces below a line with their name.

const treemap = (() => {
    const levels = 3;
    const headHeight = 19;
    const margin = 3;
    const leastArea = 150;  // of a rectangle, in square pixels

    /** Rectangles {piece, x, y, width, height, level, hue, isOpen}, those around others before them. */
    function layOut(folder, width, height) {
        const cells = [];
        addPieces(cells, folder, {x: 0, y: 0, width, height}, 1, colours.hueOf(folder.files));
        return cells;
    }

    function addPieces(cells, folder, area, level, hue) {
        const least = leastArea / (area.width * area.height) * folder.files;
        const pieces = folders.seenPieces(folders.piecesOf(folder), least);
        const nodes = d3.layout.treemap()
            .size([area.width, area.height])
            .round(true)
            .sort((a, b) => a.value - b.value)  // it begins with the last one
            .nodes({children: pieces.map((piece, index) => ({piece, index, value: piece.value}))});
        for (const node of nodes.slice(1)) {
            const cell = {
                piece: node.piece, level, hue: hue.ofPiece(node.piece, node.index), isOpen: false,
                x: area.x + node.x, y: area.y + node.y, width: node.dx - 1, height: node.dy - 1,
            };
            if (cell.width < 2 || cell.height < 2) continue;
            cells.push(cell);
            open(cells, cell);
        }
    }

    function open(cells, cell) {
        const inside = {
            x: cell.x + margin, y: cell.y + headHeight,
            width: cell.width - 2 * margin + 1, height: cell.height - headHeight - margin + 1,
        };
        if (cell.piece.kind !== 'folder' || cell.level === levels) return;
        if (inside.width < 44 || inside.height < 26) return;
        cell.isOpen = true;
        addPieces(cells, cell.piece.end, inside, cell.level + 1, cell.hue);
    }

    function draw(layer, folder, width, height) {
        const cells = layOut(folder, width, height);
        const groups = layer.selectAll('.piece').data(cells).enter().append('g')
            .attr('class', cell => 'piece ' + cell.piece.kind)
            .attr('transform', cell => `translate(${cell.x},${cell.y})`);
        groups.append('rect').attr('class', 'shape')
            .attr('rx', 2)
            .attr('width', cell => cell.width)
            .attr('height', cell => cell.height)
            .attr('fill', cell => colours.fillOf(cell));
        groups.filter(cell => cell.width > 34 && cell.height > 15).append('text')
            .attr('class', cell => cell.isOpen ? 'name strong' : 'name')
            .attr('x', 5)
            .attr('y', cell => Math.min(13.5, cell.height / 2 + 4))
            .attr('fill', colours.inkOnFill())
            .text(cell => nameIn(cell));
        groups.filter(hasCount).append('text')
            .attr('class', 'count')
            .attr('x', cell => cell.isOpen ? cell.width - 5 : 5)
            .attr('y', cell => cell.isOpen ? 13.5 : 28)
            .attr('text-anchor', cell => cell.isOpen ? 'end' : 'start')
            .attr('fill', colours.inkOnFill())
            .text(cell => folders.number(cell.piece.value));
        return groups;
    }

    const countWidth = cell => fitting.widthOf(folders.number(cell.piece.value), '11px');

    function nameIn(cell) {
        const font = cell.isOpen ? '600 12px' : '12px';
        const room = cell.width - 10 - (cell.isOpen && hasCount(cell) ? countWidth(cell) + 8 : 0);
        return fitting.nameOf(cell.piece, room, font);
    }

    /** The number beside the name of an open folder, below it otherwise, unless the name tells it. */
    function hasCount(cell) {
        if (cell.isOpen) return cell.width > 110;
        const isTold = cell.piece.kind === 'files' && nameIn(cell) === cell.piece.name;
        return !isTold && cell.height > 34 && cell.width - 10 > countWidth(cell) && nameIn(cell) !== '';
    }

    /** Where a piece is drawn: what zooming comes from. */
    const boxOf = cell => cell;

    return {draw, boxOf};
})();
