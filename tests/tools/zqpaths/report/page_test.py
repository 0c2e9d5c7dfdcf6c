"""The page of a report, opened in a real browser: it draws, goes into folders and out of them,
finds folders, and no name of a file is taken for anything but a name."""

import os
import pathlib
import subprocess
import tempfile
import unittest

from browser import Browser

ZQPATHS = os.environ['ZQPATHS']

DRAWN = '.layer:not(.leaving)'  # an old drawing goes while the new one comes

FEW = ([f'/usr/share/doc/a{i}/copyright.txt' for i in range(40)] +
       [f'/usr/share/icons/{i}.png' for i in range(60)] +
       [f'/usr/lib/x86/lib{i}.so' for i in range(70)] + ['/usr/lib/README', '/etc/passwd'])

EVIL = ['</script><img src=x onerror=harm()>', '"onload=harm() x="', '<svg onload=harm()>',
        '&lt;b&gt;bold', '{{data}}', '<!--<script>', "'+harm()+'", '\u2028harm()\u2029', '__proto__',
        'constructor', 'a\u202ertl', '`${harm()}`', '\x1b[31m']


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.browser = cls.enterClassContext(Browser(os.environ['CHROMIUM']))

    def setUp(self):
        self.browser.emulate(prefers_color_scheme='light', prefers_reduced_motion='reduce')

    def tearDown(self):
        self.assertEqual(self.browser.complaints, [])
        self.assertTrue(all(url.startswith('file:///') and url.endswith('.html')
                            for url in self.browser.requests), self.browser.requests)

    def show(self, paths):
        """Opens the page of a set of these paths."""
        made, page = self.folder / 'made.zqp', self.folder / 'page.html'
        subprocess.run([ZQPATHS, 'index', '--force', '--quiet', made, '--list', '-', '--null'],
                       input='\0'.join(paths).encode('utf-8', 'surrogateescape'), check=True)
        subprocess.run([ZQPATHS, 'report', '--force', '--quiet', made, page], check=True)
        self.browser.open(page)

    def count(self, selector):
        return self.browser.evaluate(f'document.querySelectorAll({selector!r}).length')

    def texts(self, selector):
        return self.browser.evaluate(
            f'Array.from(document.querySelectorAll({selector!r}), e => e.textContent)')

    def shown_folder(self):
        return self.browser.evaluate("document.getElementById('map').dataset.folder")

    def mark(self, name):
        """Gives what is drawn of the folder of this name the id `wanted`."""
        found = self.browser.evaluate(
            "document.getElementById('wanted')?.removeAttribute('id');"
            f"(Array.from(document.querySelectorAll('{DRAWN} .folder'))"
            f".find(e => e.__data__.piece.name === {name!r}) || {{}}).id = 'wanted';"
            "!!document.getElementById('wanted')")
        self.assertTrue(found, f'{name} is not drawn')

    def test_figures_are_those_of_the_set(self):
        self.show(FEW)
        figures = dict(zip(self.texts('#figures dt'), self.texts('#figures dd')))
        self.assertEqual(figures['paths'], '172')
        self.assertEqual(figures['folders'], '48')  # "/" and etc, too
        self.assertEqual(figures['names deep'], '6')
        self.assertEqual(self.texts('h1'), ['made.zqp'])

    def test_the_treemap_has_rectangles_in_proportion(self):
        self.show(FEW)
        areas = self.browser.evaluate(
            f"Object.fromEntries(Array.from(document.querySelectorAll('{DRAWN} .folder > rect'),"
            ' r => [r.__data__.piece.name, r.__data__.piece.value,'
            ' r.getBBox().width * r.getBBox().height]).map(([n, v, a]) => [n, a / v]))')
        self.assertIn('share', areas)
        self.assertIn('lib', areas)
        self.assertAlmostEqual(areas['share'] / areas['lib'], 1, delta=0.05)
        self.assertEqual(self.count(f'{DRAWN} path'), 0)

    def test_the_sunburst_has_arcs(self):
        self.show(FEW)
        self.browser.click('#as-sunburst')
        self.assertGreater(self.count(f'{DRAWN} .folder > path'), 5)
        self.assertEqual(self.texts(f'{DRAWN} .centre .count'), ['172 files'])
        self.assertTrue(self.browser.evaluate(
            f"Array.from(document.querySelectorAll('{DRAWN} path')).every("
            "p => p.getBBox().width > 0 && !p.getAttribute('d').includes('NaN'))"))
        self.mark('share')
        self.browser.evaluate(
            "document.getElementById('wanted').dispatchEvent(new MouseEvent('click'))")
        self.assertEqual(self.shown_folder(), '/usr/share')
        self.browser.click(f'{DRAWN} .hub')
        self.assertEqual(self.shown_folder(), '/usr')

    def test_a_click_goes_in_and_the_way_leads_out(self):
        self.show(FEW)
        self.assertEqual(self.shown_folder(), '/')
        self.mark('share')
        self.browser.click('#wanted', x=0.3, y=0.01)
        self.assertEqual(self.shown_folder(), '/usr/share')
        self.assertEqual(self.texts('#way .name'), ['/', 'usr', 'share'])
        self.assertEqual(self.texts('#way .total'), ['100 files'])
        self.browser.click('#way button:nth-of-type(2)')
        self.assertEqual(self.shown_folder(), '/usr')
        self.browser.press('Escape')
        self.assertEqual(self.shown_folder(), '/')
        self.browser.press('Escape')
        self.assertEqual(self.shown_folder(), '/')

    def test_zooming_moves_and_comes_to_an_end(self):
        self.browser.emulate(prefers_reduced_motion='no-preference')
        self.show(FEW)
        self.mark('share')
        self.browser.click('#wanted', x=0.3, y=0.01)
        self.browser.press('Escape')
        self.browser.wait_for("document.querySelectorAll('#map .layer').length === 1")
        self.assertEqual(self.shown_folder(), '/usr')

    def test_keys_go_through_the_map(self):
        self.show(FEW)
        self.browser.evaluate(f"document.querySelector('{DRAWN} .piece').focus()")
        name = "document.activeElement.__data__.piece.name"
        self.assertEqual(self.browser.evaluate(name), 'usr')
        self.browser.press('ArrowRight')
        self.assertNotEqual(self.browser.evaluate(name), 'usr')
        self.browser.press('ArrowLeft')
        self.browser.press('Enter')
        self.assertEqual(self.shown_folder(), '/usr')
        self.assertIn('% of usr', self.browser.evaluate(
            "document.activeElement.getAttribute('aria-label')"))

    def test_the_search_finds_a_folder_and_goes_there(self):
        self.show(FEW)
        self.browser.click('#search')
        self.browser.type('A1')
        self.assertEqual(self.texts('#found .name')[:2],
                         ['/usr/share/doc/a1', '/usr/share/doc/a10'])
        self.browser.press('ArrowDown')
        self.browser.press('Enter')
        self.assertEqual(self.shown_folder(), '/usr/share/doc/a10')
        self.browser.type('usr/lib')
        self.assertEqual(self.texts('#found .name'), ['/usr/lib'])
        self.browser.click('#found li')
        self.assertEqual(self.shown_folder(), '/usr/lib')
        self.browser.type('nowhere')
        self.assertEqual(self.count('#found [role=option]'), 0)
        self.assertEqual(len(self.texts('#found li')), 1)
        self.browser.press('Escape')
        self.assertFalse(self.browser.evaluate("document.getElementById('found').offsetHeight"))
        self.assertEqual(self.shown_folder(), '/usr/lib')

    def test_a_piece_that_is_pointed_at_tells_of_itself(self):
        self.show(FEW)
        self.mark('lib')
        self.browser.click('#wanted', x=0.3, y=0.01)
        self.mark('x86')
        self.browser.evaluate("document.getElementById('wanted').dispatchEvent("
                              "new MouseEvent('mousemove', {clientX: 300, clientY: 300}))")
        self.assertEqual(self.texts('#tip > *'),
                         ['/usr/lib/x86', '70 files', '98.6 % of lib', '40.7 % of all 172'])

    def test_charts_have_bars_in_proportion(self):
        self.show(FEW)
        for chart, rows in (('depths', {'3': 1, '4': 1, '5': 130, '6': 40}),
                            ('extensions', {'.so': 70, '.png': 60, '.txt': 40, 'none': 2})):
            labels = self.texts(f'#{chart} .name')
            counts = self.texts(f'#{chart} .figure:not(.share)')
            widths = self.browser.evaluate(
                f"Array.from(document.querySelectorAll('#{chart} .fill'), e => e.offsetWidth)")
            told = {label: int(count) for label, count in zip(labels, counts)}
            self.assertEqual({label: told[label] for label in rows}, rows)
            for label, count, width in zip(labels, counts, widths):
                if int(count) > 10:
                    self.assertAlmostEqual(width / max(widths), int(count) / max(told.values()),
                                           delta=0.01, msg=label)

    def test_evil_names_are_names(self):
        # A slash ends a name; where there is none, the whole is a folder and an extension.
        self.show([f'{name}/sub/{i}.{name}' for i, name in enumerate(EVIL)] + ['ordinary/file'])
        self.browser.evaluate('window.harm = () => { window.isHarmed = true; }')
        for kind in ('sunburst', 'treemap'):
            self.browser.click('#as-' + kind)
        self.browser.click('#search')
        self.browser.type('<')
        self.assertIn('<svg onload=harm()>', self.texts('#found .name'))
        self.browser.press('Enter')
        self.assertIsNone(self.browser.evaluate('window.isHarmed'))
        self.assertEqual(self.count('img, iframe, object, [onload], [onerror]'), 0)
        self.assertEqual(self.count('script'), 11)  # D3, the page's own and the data
        names = self.browser.evaluate('folders.all.map(folder => folder.name)')
        for name in ('"onload=harm() x="', '&lt;b&gt;bold', '{{data}}', '<!--<script>', '__proto__'):
            self.assertIn(name, names)
        self.assertIn('\\x1B[31m', names)

    def test_the_policy_forbids_the_network_and_other_scripts(self):
        self.show(FEW)
        self.browser.evaluate(
            "window.refused = []; document.addEventListener('securitypolicyviolation',"
            " e => refused.push(e.effectiveDirective))")
        self.assertEqual(self.browser.evaluate(
            "fetch('http://127.0.0.1:9/').then(() => 'fetched', () => 'refused')"), 'refused')
        self.browser.evaluate(
            "(() => { const s = document.createElement('script'); s.textContent = 'window.ran = 1';"
            " document.body.append(s); const i = document.createElement('img');"
            " i.src = 'http://127.0.0.1:9/x.png'; document.body.append(i); })()")
        self.browser.wait_for('refused.length === 3')
        self.assertEqual(sorted(self.browser.evaluate('refused')),
                         ['connect-src', 'img-src', 'script-src-elem'])
        self.assertIsNone(self.browser.evaluate('window.ran'))
        self.assertTrue(all('Content Security Policy' in complaint['entry']['text']
                            for complaint in self.browser.complaints))
        self.browser.complaints.clear()
        self.browser.requests.clear()  # those refused are told, too

    def test_a_page_has_the_largest_folders_and_says_so(self):
        self.show([f'many/{i}/x' for i in range(20_500)] + [f'large/{i}/{j}' for i in range(9)
                                                            for j in range(9)])
        self.assertIn('The 20,000 largest of 20,511 folders', self.texts('#extent')[0])
        self.assertEqual(self.browser.evaluate('folders.all.length'), 20_001)
        self.assertEqual(self.browser.evaluate(
            "folders.piecesOf(folders.all.find(f => f.name === 'many'))"
            ".filter(p => p.kind === 'rest').map(p => [p.name, p.value])"),
            [['511 more folders', 511]])
        self.assertLess(self.count('#map .piece'), 5_000)

    def test_thousands_of_levels_are_gone_through(self):
        self.show(['d/' * i + 'f' for i in range(1, 3_001)])
        self.browser.click('#search')
        self.browser.type('d')
        self.browser.press('ArrowUp')
        self.browser.press('Enter')
        self.assertTrue(self.shown_folder().startswith('d/d/d'))
        self.assertLess(len(self.texts('#way .name')), 10)

    def test_a_set_without_folders_and_one_of_one_folder_are_shown(self):
        self.show(['a', 'b.c'])
        self.assertEqual(self.texts(f'{DRAWN} .name'), ['2 files'])
        self.show(['x/y/a', 'x/y/b'])
        self.assertEqual(self.shown_folder(), 'x/y')
        self.browser.click('#as-sunburst')
        self.assertEqual(self.count(f'{DRAWN} .shape'), 1)

    def test_dark_pages_have_dark_maps(self):
        fill = f"getComputedStyle(document.querySelector('{DRAWN} .shape')).fill"
        self.show(FEW)
        light = self.browser.evaluate(fill)
        self.browser.emulate(prefers_color_scheme='dark', prefers_reduced_motion='reduce')
        self.browser.wait_for(f'{fill} !== {light!r}')
        red = int(self.browser.evaluate(fill).split('(')[1].split(',')[0])
        self.assertLess(red, 90)

    def test_print_has_the_map_and_leaves_out_what_is_for_the_screen(self):
        self.show(FEW)
        self.browser.emulate('print')
        visible = "e => document.querySelector(e).offsetParent !== null"
        self.assertEqual(self.browser.evaluate(
            f"['.search', '.switch', '#map', '#extensions', '#way'].map({visible})"),
            [False, False, True, True, True])


if __name__ == '__main__':
    unittest.main(verbosity=2)
