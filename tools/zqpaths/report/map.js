'use strict';
// The map: one folder at a time, as a treemap or a sunburst, and the way to it.

const map = (() => {
    const element = document.getElementById('map');
    const way = document.getElementById('way');
    const svg = d3.select(element).append('svg').attr('role', 'group').attr('aria-labelledby', 'map-title');
    const still = window.matchMedia('(prefers-reduced-motion: reduce)');
    const duration = 380;
    const stopsShown = 6;
    const kinds = {treemap, sunburst};
    let kind = 'treemap';
    let current = folders.endOf(folders.top);
    let layer = null;
    let pieces = null;  // what is drawn, as a selection

    const sizeOf = () => ({
        width: Math.max(280, element.clientWidth),
        height: Math.max(380, Math.min(680, Math.round(window.innerHeight * 0.66))),
    });

    function drawLayer() {
        const {width, height} = sizeOf();
        svg.attr('viewBox', `0 0 ${width} ${height}`);
        layer = svg.append('g').attr('class', 'layer');
        layer.append('rect').attr('width', width).attr('height', height).attr('fill', 'var(--card)');
        pieces = kinds[kind].draw(layer, current, width, height)
            .attr('tabindex', (node, i) => i === 0 ? 0 : -1)
            .attr('role', node => node.piece.kind === 'folder' ? 'button' : 'img')
            .attr('aria-label', node => tip.textOf(node.piece, current))
            .on('click', node => enter(node.piece, kinds[kind].boxOf(node)))
            .on('keydown', onKey)
            .on('mousemove', node => tip.show(node.piece, current, d3.event.clientX, d3.event.clientY))
            .on('mouseleave', tip.hide)
            .on('focus', function (node) {
                if (!this.matches(':focus-visible')) return;
                const box = this.getBoundingClientRect();
                tip.show(node.piece, current, box.left, box.top);
            })
            .on('blur', tip.hide);
        layer.select('.centre').on('click', leave);
        element.dataset.kind = kind;
        element.dataset.folder = folders.pathOf(current);
    }

    /** Draws anew without any movement. */
    function draw() {
        svg.selectAll('.layer').interrupt().remove();
        drawLayer();
        drawWay();
    }

    const transformFrom = (box, {width, height}) =>
        `translate(${box.x},${box.y}) scale(${box.width / width},${box.height / height})`;

    /** The whole, as a box; and one about the middle of it. */
    const allOf = ({width, height}) => ({x: 0, y: 0, width, height});
    const middleOf = ({width, height}, scale) => ({
        x: width * (1 - scale) / 2, y: height * (1 - scale) / 2, width: width * scale, height: height * scale,
    });

    /** Shows another folder: the new drawing grows out of a box, or the old one shrinks into it. */
    function show(folder, {grows = null, shrinks = null} = {}) {
        const hadFocus = element.contains(document.activeElement);
        const old = layer;
        current = folder;
        tip.hide();
        svg.selectAll('.layer').filter(function () { return this !== old.node(); }).interrupt().remove();
        drawLayer();
        drawWay();
        if (hadFocus) pieces.node()?.focus();
        if (still.matches) return void old.remove();
        const size = sizeOf();
        if (shrinks) {
            svg.node().append(old.node());
            old.transition().duration(duration).style('opacity', 0)
                .attr('transform', transformFrom(shrinks(pieces) || middleOf(size, 0.7), size)).remove();
        } else {
            layer.attr('transform', transformFrom(grows || middleOf(size, 0.8), size)).style('opacity', 0.2)
                .transition().duration(duration).style('opacity', 1)
                .attr('transform', transformFrom(allOf(size), size));
            old.transition().duration(duration).style('opacity', 0).remove();
        }
        old.classed('leaving', true).style('pointer-events', 'none').selectAll('.piece').attr('tabindex', null);
    }

    function enter(piece, box) {
        if (piece.kind === 'folder') show(piece.end, {grows: box});
    }

    /** Goes to a folder above, in which the one that was shown has its place. */
    function leaveTo(above) {
        const left = current;
        show(above, {shrinks: drawn => {
            const around = drawn.data().filter(node => node.piece.kind === 'folder' && isIn(left, node.piece.end));
            return around.length > 0 ? kinds[kind].boxOf(around[around.length - 1]) : null;
        }});
    }

    function isIn(folder, above) {
        while (folder && folder !== above) folder = folder.parent;
        return folder === above;
    }

    function leave() {
        const out = folders.outOf(current);
        if (out) leaveTo(out);
    }

    /** The folders above that can be gone to, from the top down. */
    function stopsTo(folder) {
        const stops = [];
        for (let at = folder; at; at = folders.outOf(at)) stops.push(at);
        return stops.reverse();
    }

    function drawWay() {
        way.textContent = '';
        const stops = stopsTo(current);
        const leftOut = Math.max(0, stops.length - stopsShown);
        stops.forEach((stop, i) => {
            if (i > 0 && i <= leftOut) {
                if (i === 1) way.append(stepText('…'), stepText('›'));
                return;
            }
            const isHere = stop === current;
            const item = document.createElement(isHere ? 'span' : 'button');
            item.className = 'name';
            item.textContent = folders.nameBelow(stops[i - 1] || null, stop);
            if (isHere) item.setAttribute('aria-current', 'location');
            else item.addEventListener('click', () => leaveTo(stop));
            way.append(item);
            if (!isHere) way.append(stepText('›'));
        });
        const total = document.createElement('span');
        total.className = 'total';
        total.textContent = folders.counted(current.files, 'file');
        way.append(total);
    }

    function stepText(text) {
        const step = document.createElement('span');
        step.className = 'step';
        step.textContent = text;
        return step;
    }

    function onKey(node) {
        const step = {ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1}[d3.event.key];
        if (step) focusBeside(this, step);
        else if (d3.event.key === 'Enter' || d3.event.key === ' ') enter(node.piece, kinds[kind].boxOf(node));
        else return;
        d3.event.preventDefault();
    }

    function focusBeside(piece, step) {
        const all = pieces[0];
        const next = all[(all.indexOf(piece) + step + all.length) % all.length];
        piece.setAttribute('tabindex', -1);
        next.setAttribute('tabindex', 0);
        next.focus();
    }

    document.addEventListener('keydown', event => {
        if (event.key === 'Escape' && event.target.id !== 'search') leave();
    });
    for (const each of Object.keys(kinds)) {
        document.getElementById('as-' + each).addEventListener('click', () => {
            kind = each;
            for (const other of Object.keys(kinds))
                document.getElementById('as-' + other).setAttribute('aria-pressed', String(other === kind));
            draw();
        });
    }
    colours.onChange(draw);
    let resizing = null;
    window.addEventListener('resize', () => {
        clearTimeout(resizing);
        resizing = setTimeout(draw, 120);
    });

    return {draw, show: folder => { if (folders.endOf(folder) !== current) show(folders.endOf(folder)); }};
})();
