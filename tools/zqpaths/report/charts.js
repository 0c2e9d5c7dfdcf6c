'use strict';
// The charts below the map, and the figures above it.

const charts = (() => {
    const {data, number} = folders;
    const share = d3.format('.1f');
    const percentOf = (part, whole) => share(whole > 0 ? 100 * part / whole : 0) + ' %';

    function sizeText(bytes) {
        const units = ['bytes', 'KiB', 'MiB', 'GiB', 'TiB', 'PiB'];
        let unit = 0;
        for (; bytes >= 1024 && unit + 1 < units.length; ++unit) bytes /= 1024;
        return (unit === 0 ? number(bytes) : d3.format(',.1f')(bytes)) + ' ' + units[unit];
    }

    function drawFigures() {
        const figures = [
            ['paths', number(data.paths), ''],
            ['folders', number(folders.top.foldersBelow), ''],
            ['names deep', number(data.mostNames), ''],
            ['of text, as a list', sizeText(data.textBytes), number(data.textBytes) + ' bytes'],
            ['in the file', sizeText(data.fileBytes), number(data.fileBytes) + ' bytes'],
            ['bytes a path in the file', data.paths > 0 ? d3.format('.2f')(data.fileBytes / data.paths) : '–', ''],
        ];
        const list = document.getElementById('figures');
        for (const [label, figure, exactly] of figures) {
            const tile = document.createElement('div');
            const term = document.createElement('dt');
            const value = document.createElement('dd');
            term.textContent = label;
            value.textContent = figure;
            if (exactly) tile.title = exactly;
            tile.append(term, value);
            list.append(tile);
        }
    }

    /** Rows of a label, a bar and figures; those with `isSummed` stand for several others. */
    function drawBars(id, rows) {
        const place = document.getElementById(id);
        const most = d3.max(rows, row => row.count);
        for (const {label, count, isSummed} of rows) {
            const line = document.createElement('div');
            line.className = isSummed ? 'row summed' : 'row';
            const [name, track, figure, part] = ['name', 'track', 'figure', 'figure share'].map(kind => {
                const cell = document.createElement('span');
                cell.className = kind;
                line.append(cell);
                return cell;
            });
            const fill = document.createElement('span');
            fill.className = 'fill';
            fill.hidden = count === 0;
            fill.style.width = 100 * count / most + '%';
            track.append(fill);
            name.textContent = name.title = label;
            figure.textContent = number(count);
            part.textContent = percentOf(count, data.paths);
            place.append(line);
        }
    }

    function drawDepths() {
        const hasMore = data.mostNames > data.depths.length;
        drawBars('depths', data.depths.map((count, i) => {
            const isSummed = hasMore && i + 1 === data.depths.length;
            return {label: i + 1 + (isSummed ? ' and more' : ''), count, isSummed};
        }));
    }

    function drawExtensions() {
        const rows = data.extensions.map(([name, count]) => ({label: '.' + name, count}));
        if (data.otherExtensions > 0) rows.push({label: 'others', count: data.otherExtensions, isSummed: true});
        if (data.noExtension > 0) rows.push({label: 'none', count: data.noExtension, isSummed: true});
        drawBars('extensions', rows);
    }

    function drawExtent() {
        const shown = folders.all.length - 1;
        document.getElementById('extent').textContent = shown < folders.top.foldersBelow
            ? `The ${number(shown)} largest of ${number(folders.top.foldersBelow)} folders are on the map; ` +
              'the others are summed up in the folders that they are in.'
            : '';
    }

    return {drawFigures, drawDepths, drawExtensions, drawExtent};
})();

document.getElementById('set').textContent = folders.data.set;
charts.drawFigures();
charts.drawExtent();
charts.drawExtensions();
charts.drawDepths();
map.draw();
