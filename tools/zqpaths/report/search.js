'use strict';
// The search over the folders of the page: each word between separators has to be in one name, the
// last one in that of the folder; the largest are shown.

const search = (() => {
    const input = document.getElementById('search');
    const list = document.getElementById('found');
    const most = 40;
    const lowered = folders.all.map(folder => folder.name.toLowerCase());
    let found = [];
    let chosen = -1;

    function matches(folder, parts) {
        let at = folder;
        for (let i = parts.length - 1; i >= 0; --i, at = at.parent)
            if (!at || !lowered[at.id].includes(parts[i])) return false;
        return true;
    }

    /** The folders that match, those with just this name first, then the largest. */
    function find(text) {
        const parts = text.toLowerCase().split('/').filter(part => part !== '');
        if (parts.length === 0) return [];
        const last = parts[parts.length - 1];
        const all = folders.all.filter(folder => folder.parent && matches(folder, parts));
        const rank = folder => lowered[folder.id] === last ? 0 : lowered[folder.id].startsWith(last) ? 1 : 2;
        // The data have the largest first, and sorting keeps the order of equal ones.
        return all.sort((a, b) => rank(a) - rank(b)).slice(0, most);
    }

    function rowOf(folder, index) {
        const row = document.createElement('li');
        row.id = 'found-' + index;
        row.setAttribute('role', 'option');
        row.setAttribute('aria-selected', 'false');
        const name = document.createElement('span');
        name.className = 'name';
        name.textContent = folders.pathOf(folder, 120);
        const count = document.createElement('span');
        count.className = 'count';
        count.textContent = folders.number(folder.files);
        row.append(name, count);
        // Before the input loses the focus.
        row.addEventListener('mousedown', event => { event.preventDefault(); choose(index); });
        return row;
    }

    function update() {
        found = find(input.value);
        chosen = -1;
        list.textContent = '';
        list.append(...found.map(rowOf));
        const isAsked = input.value.trim() !== '';
        if (isAsked && found.length === 0) {
            const none = document.createElement('li');
            none.textContent = 'No folder of the map has such a name.';
            list.append(none);
        }
        setOpen(isAsked);
        if (found.length > 0) select(0);
    }

    function setOpen(isOpen) {
        list.hidden = !isOpen;
        input.setAttribute('aria-expanded', String(isOpen));
        if (!isOpen) input.removeAttribute('aria-activedescendant');
    }

    function select(index) {
        list.children[chosen]?.setAttribute('aria-selected', 'false');
        chosen = (index + found.length) % found.length;
        const row = list.children[chosen];
        row.setAttribute('aria-selected', 'true');
        row.scrollIntoView({block: 'nearest'});
        input.setAttribute('aria-activedescendant', row.id);
    }

    function choose(index) {
        setOpen(false);
        input.value = '';
        map.show(found[index]);
    }

    input.addEventListener('input', update);
    input.addEventListener('blur', () => setOpen(false));
    input.addEventListener('keydown', event => {
        const step = {ArrowDown: 1, ArrowUp: -1}[event.key];
        if (event.key === 'Escape') setOpen(false);
        else if (event.key === 'Enter' && !list.hidden && chosen >= 0) choose(chosen);
        else if (step && !list.hidden && found.length > 0) select(chosen + step);
        else return;
        event.preventDefault();
    });
})();
