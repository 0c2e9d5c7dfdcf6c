'use strict';
// The sunburst: the folder in the middle, its pieces around it, theirs around them; angles are in
// proportion to the files. Beside it, where there is room, the largest pieces by name.

const sunburst = (() => {
    const rings = 4;
    const leastArc = 2.5;  // pixels at the middle of a ring
    const legendWidth = 300;
    const legendRows = 14;

    /** The folder and its pieces, as far as they can be seen, as d3.layout wants them. */
    function treeOf(folder, total, radius, level, hue) {
        const ring = radius * (level + 1.5) / (rings + 1);
        const least = leastArc / (2 * Math.PI * ring) * total;
        return folders.seenPieces(folders.piecesOf(folder), least).map((piece, index) => {
            const node = {piece, value: piece.value, level: level + 1, hue: hue.ofPiece(piece, index)};
            if (piece.kind === 'folder' && level + 1 < rings && piece.value > least)
                node.children = treeOf(piece.end, total, radius, level + 1, node.hue);
            return node;
        });
    }

    function draw(layer, folder, width, height) {
        const radius = Math.min(width, height) / 2 - 2;
        const hasLegend = width > 2 * radius + legendWidth;
        const centre = hasLegend ? (width - legendWidth) / 2 : width / 2;
        const tree = {children: treeOf(folder, folder.files, radius, 0, colours.hueOf(folder.files))};
        const nodes = d3.layout.partition().size([2 * Math.PI, rings + 1]).nodes(tree)
            .filter(node => node.depth > 0);
        // The rings have the same width, which the layout gives to levels that there are.
        const ringWidth = radius / (rings + 1);
        const arc = d3.svg.arc()
            .startAngle(node => node.x)
            .endAngle(node => node.x + node.dx)
            .innerRadius(node => node.depth * ringWidth + 0.5)
            .outerRadius(node => (node.depth + 1) * ringWidth - 0.5);

        const middle = layer.append('g').attr('transform', `translate(${centre},${height / 2})`);
        const groups = middle.selectAll('.piece').data(nodes).enter().append('g')
            .attr('class', node => 'piece ' + node.piece.kind);
        groups.append('path').attr('class', 'shape')
            .attr('d', arc)
            .attr('fill', node => colours.fillOf(node))
            .attr('stroke', 'var(--card)')
            .attr('stroke-width', 0.7);
        drawNames(groups, ringWidth);
        drawHub(middle, folder, ringWidth);
        if (hasLegend) drawLegend(layer, tree.children, folder, width - legendWidth + 12, height);
        return groups;
    }

    /** Names along the radius, from the middle outwards, upright on both sides. */
    function drawNames(groups, ringWidth) {
        groups.filter(node => node.dx * (node.depth + 0.5) * ringWidth > 13).append('text')
            .attr('class', 'name')
            .attr('fill', colours.inkOnFill())
            .attr('text-anchor', 'middle')
            .attr('dy', '.35em')
            .attr('transform', node => {
                const angle = (node.x + node.dx / 2) * 180 / Math.PI - 90;
                const turn = angle > 90 ? 180 : 0;
                return `rotate(${angle}) translate(${(node.depth + 0.5) * ringWidth},0) rotate(${turn})`;
            })
            .text(node => fitting.nameOf(node.piece, ringWidth - 8));
    }

    function drawHub(middle, folder, ringWidth) {
        const hub = middle.append('g').attr('class', folders.outOf(folder) ? 'centre way-out' : 'centre');
        hub.append('circle').attr('class', 'hub').attr('r', ringWidth - 1);
        const lines = [
            [fitting.cut(folders.nameBelow(folders.outOf(folder), folder), 1.7 * ringWidth, '600 12px'), 'name strong'],
            [folders.counted(folder.files, 'file'), 'count'],
        ];
        lines.forEach(([text, kind], i) => hub.append('text')
            .attr('class', kind + ' legend')
            .attr('text-anchor', 'middle')
            .attr('y', i * 17 - 3)
            .text(text));
    }

    function drawLegend(layer, nodes, folder, x, height) {
        const rows = nodes.slice(0, legendRows);
        const rowHeight = 25;
        const top = (height - rows.length * rowHeight) / 2;
        const groups = layer.selectAll('.key').data(rows).enter().append('g')
            .attr('class', 'key')
            .attr('transform', (node, i) => `translate(${x},${top + i * rowHeight})`);
        groups.append('rect')
            .attr('width', 12).attr('height', 12).attr('rx', 2).attr('y', 1)
            .attr('fill', node => colours.fillOf({...node, level: 1}));
        groups.append('text').attr('class', 'name legend').attr('x', 20).attr('y', 11)
            .text(node => fitting.nameOf(node.piece, legendWidth - 110));
        groups.append('text').attr('class', 'count legend').attr('text-anchor', 'end')
            .attr('x', legendWidth - 24).attr('y', 11)
            .text(node => d3.format('.1f')(100 * node.piece.value / folder.files) + ' %');
    }

    /** Zooming comes from the middle of what is shown. */
    const boxOf = () => null;

    return {draw, boxOf};
})();
