"""A browser without a window, told what to do through a pipe by the DevTools protocol.

    with Browser("/usr/bin/chromium-headless-shell") as browser:
        browser.open("page.html")
        browser.click("#button")
        browser.evaluate("document.title")

What the page complains of is in `complaints`, what it asks the network for in `requests`.
"""

import json
import os
import pathlib
import select
import subprocess
import tempfile
import time

PATIENCE = 20  # seconds that anything may take


class Browser:
    def __init__(self, program):
        self._program = program
        self.complaints = []
        self.requests = []

    def __enter__(self):
        self._folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        told, self._tell = os.pipe()
        self._hear, says = os.pipe()
        # The browser listens on descriptor 3 and speaks on 4.
        command = (f'exec 3<&{told} 4>&{says}; exec "$0" --headless --no-sandbox --disable-gpu'
                   ' --hide-scrollbars --disable-dev-shm-usage --window-size=1200,900'
                   f' --remote-debugging-pipe --user-data-dir="{self._folder.name}" about:blank')
        self._process = subprocess.Popen(['bash', '-c', command, self._program],
                                         pass_fds=(told, says), stderr=subprocess.DEVNULL)
        os.close(told)
        os.close(says)
        self._received = b''
        self._count = 0
        self._session = None
        target = next(t for t in self._call('Target.getTargets')['targetInfos']
                      if t['type'] == 'page')
        self._session = self._call('Target.attachToTarget', targetId=target['targetId'],
                                   flatten=True)['sessionId']
        for domain in ('Page', 'Runtime', 'Log', 'Network'):
            self._call(domain + '.enable')
        return self

    def __exit__(self, *_):
        os.close(self._tell)  # which ends it
        try:
            self._process.wait(5)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        os.close(self._hear)
        self._folder.cleanup()

    def open(self, file):
        """Opens a file, and forgets what there was to complain of before."""
        self.complaints.clear()
        self.requests.clear()
        self._call('Page.navigate', url=pathlib.Path(file).absolute().as_uri())
        self.wait_for("document.readyState === 'complete'")

    def evaluate(self, expression):
        answer = self._call('Runtime.evaluate', expression=expression, returnByValue=True,
                            awaitPromise=True)
        if 'exceptionDetails' in answer:
            raise AssertionError(f'{expression}: {answer["exceptionDetails"]}')
        return answer['result'].get('value')

    def wait_for(self, expression):
        """Waits until it is true of the page."""
        end = time.monotonic() + PATIENCE
        while not self.evaluate(expression):
            if time.monotonic() > end:
                raise AssertionError(f'is not so after {PATIENCE} s: {expression}')
            time.sleep(0.02)

    def click(self, selector, x=0.5, y=0.5):
        """Clicks where an element is, by default in its middle, as a mouse does."""
        box = self.evaluate(
            f'(() => {{ const e = document.querySelector({json.dumps(selector)});'
            ' e.scrollIntoView({block: "nearest"}); const b = e.getBoundingClientRect();'
            ' return [b.x, b.y, b.width, b.height]; })()')
        place = {'x': box[0] + x * box[2], 'y': box[1] + y * box[3]}
        self._call('Input.dispatchMouseEvent', type='mouseMoved', **place)
        for kind in ('mousePressed', 'mouseReleased'):
            self._call('Input.dispatchMouseEvent', type=kind, button='left', clickCount=1, **place)

    def type(self, text):
        for character in text:
            self._call('Input.dispatchKeyEvent', type='keyDown', text=character)
            self._call('Input.dispatchKeyEvent', type='keyUp')

    def press(self, key):
        for kind in ('rawKeyDown', 'keyUp'):
            self._call('Input.dispatchKeyEvent', type=kind, key=key, code=key)

    def emulate(self, medium='', **features):
        """As which medium the page is shown, and what it is told of the person's wishes."""
        wishes = [{'name': name.replace('_', '-'), 'value': value}
                  for name, value in features.items()]
        self._call('Emulation.setEmulatedMedia', media=medium, features=wishes)

    def _call(self, method, **parameters):
        self._count += 1
        message = {'id': self._count, 'method': method, 'params': parameters}
        if self._session:
            message['sessionId'] = self._session
        os.write(self._tell, json.dumps(message).encode() + b'\0')
        while True:
            heard = self._next_message()
            if heard.get('id') == self._count:
                if 'error' in heard:
                    raise AssertionError(f'{method}: {heard["error"]}')
                return heard['result']
            self._note(heard)

    def _next_message(self):
        while b'\0' not in self._received:
            if not select.select([self._hear], [], [], PATIENCE)[0]:
                raise AssertionError('the browser says nothing')
            piece = os.read(self._hear, 1 << 20)
            if not piece:
                raise AssertionError('the browser has gone')
            self._received += piece
        message, self._received = self._received.split(b'\0', 1)
        return json.loads(message)

    def _note(self, event):
        method = event.get('method')
        if method in ('Runtime.exceptionThrown', 'Log.entryAdded', 'Runtime.consoleAPICalled'):
            self.complaints.append(event['params'])
        elif method == 'Network.requestWillBeSent':
            self.requests.append(event['params']['request']['url'])
