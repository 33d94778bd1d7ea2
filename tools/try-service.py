#!/usr/bin/env python3
"""Looks at the sandbox of the house's service, and brings the house up in it where this user's systemd runs.

The house is one of its own, without sound, in a folder that is away afterwards. Tried is that the player gets ready, plays,
and that the service ends in order. The programs are those of build/release.
"""
import http.cookiejar
import json
import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import time
import urllib.request

ROOT = pathlib.Path(__file__).resolve().parent.parent
NAME = 'vantorix-trial'
MOST_EXPOSED = 19  # tenths of what systemd-analyze makes of it
PATIENCE = 120  # seconds for a step that takes few


def run(*words, **more):
    return subprocess.run(words, check=False, text=True, capture_output=True, **more)


def score(folder):
    """Fails where the sandbox has become wider."""
    unit = folder / 'vantorix.service'
    environment = dict(os.environ, XDG_RUNTIME_DIR=os.environ.get('XDG_RUNTIME_DIR', str(folder)))
    printed = run(ROOT / 'packaging/service.sh', 'print', env=environment)
    if printed.returncode != 0:
        sys.exit(printed.stderr)
    unit.write_text(printed.stdout, encoding='utf-8')
    told = run('systemd-analyze', 'security', '--user', '--offline=true', f'--threshold={MOST_EXPOSED}', unit,
               env=environment)
    print((told.stdout + told.stderr).strip().splitlines()[-1])
    if told.returncode != 0:
        sys.exit(f'The service is more exposed than {MOST_EXPOSED / 10}')


def paths(folder):
    """Fails where the unit can't write the playlists of the music that the house plays."""
    config = folder / 'settings'
    (config / 'vantorix').mkdir(parents=True)
    given = folder / 'given'
    given.mkdir()
    environment = dict(os.environ, HOME='/home/me', XDG_DATA_HOME='/data', XDG_CONFIG_HOME=str(config))
    named = '[covers]\nfolder = /covers\n[Library]\n# folder = /no\nfolder = ~/Music\nfolder = /more\n'
    for text, words, playlists in (
            ('', [], '/data/vantorix/demo-music/Playlists'),
            (named, [], '/home/me/Music/Playlists'),
            (named + 'Playlists=/lists\n', [], '/lists'),
            (named, [given], f'{given}/Playlists')):
        (config / 'vantorix/player.ini').write_text(text, encoding='utf-8')
        printed = run(ROOT / 'packaging/service.sh', 'print', *words, env=environment).stdout.splitlines()
        writable = f'ReadWritePaths="-/data/vantorix" "-{playlists}"'
        begun = ''.join(f' "{word}"' for word in words)
        if writable not in printed or f'ExecStart="{ROOT}/run.sh"{begun}' not in printed:
            sys.exit(f'Not as it should be: {writable}\n' + '\n'.join(printed))


def lay_out(folder):
    """Fails where installing doesn't put the desktop's entry in its place, or removing leaves it there. Without systemd:
    what is said to it goes nowhere."""
    (folder / 'bin').mkdir()
    silent = folder / 'bin/systemctl'
    silent.write_text('#!/bin/sh\n', encoding='utf-8')
    silent.chmod(0o700)
    environment = dict(os.environ, XDG_DATA_HOME=str(folder / 'share'), XDG_CONFIG_HOME=str(folder / 'config'),
                       PATH=f'{folder}/bin:{os.environ["PATH"]}')
    environment.pop('DISPLAY', None)
    environment.pop('WAYLAND_DISPLAY', None)
    laid = [folder / 'config/systemd/user/vantorix.service',
            folder / 'share/applications/vantorix-media-player.desktop',
            folder / 'share/icons/hicolor/48x48/apps/vantorix-media-player.png']
    for step, there in (('install', True), ('remove', False)):
        told = run(ROOT / 'packaging/service.sh', step, env=environment)
        wrong = [str(file) for file in laid if file.exists() != there]
        if told.returncode != 0 or wrong:
            sys.exit(f'{step}: {wrong} {told.stdout}{told.stderr}')


def stays_out(folder):
    """Fails where installing makes a music folder that is away: its disc may be."""
    (folder / 'refused/vantorix').mkdir(parents=True)
    environment = dict(os.environ, HOME=str(folder / 'disc'), XDG_CONFIG_HOME=str(folder / 'refused'),
                       XDG_DATA_HOME=str(folder / 'share'), PATH=f'{folder}/bin:{os.environ["PATH"]}')
    away = f'{folder}/disc/Music'
    for named in (away, '~/Music'):
        (folder / 'refused/vantorix/player.ini').write_text(f'[library]\nfolder = {named}\n', encoding='utf-8')
        told = run(ROOT / 'packaging/service.sh', 'install', env=environment)
        made = [str(file) for file in (folder / 'disc', folder / 'refused/systemd') if file.exists()]
        if told.returncode == 0 or f'There is no music folder {away}' not in told.stderr or made:
            sys.exit(f'install with {named}: {made} {told.stdout}{told.stderr}')


def is_up(socket_file):
    with socket.socket(socket.AF_UNIX) as bus:
        try:
            bus.connect(str(socket_file))
        except OSError:
            return False
    return True


def until(words, condition):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            if condition():
                return
        except OSError:
            pass  # it isn't there yet
        time.sleep(0.1)
    raise RuntimeError(f'It took too long until {words}')


class House:
    """The house as its owner's browser sees it."""

    def __init__(self, address):
        self.origin = address.split('/?')[0]
        jar = urllib.request.HTTPCookieProcessor(http.cookiejar.CookieJar())
        self.opener = urllib.request.build_opener(jar)
        self.opener.open(address).read()

    def get(self, path):
        return json.load(self.opener.open(self.origin + path))

    def post(self, path, content):
        headers = {'Origin': self.origin, 'Content-Type': 'application/json'}
        body = json.dumps(content).encode()
        self.opener.open(urllib.request.Request(self.origin + path, body, headers)).read()


def control(*words):
    return run('systemctl', '--user', *words)


def try_it(folder):
    environment = dict(os.environ, XDG_DATA_HOME=str(folder), VANTORIX_SERVICE=NAME)
    drop_in = pathlib.Path(os.environ.get('XDG_CONFIG_HOME', pathlib.Path.home() / '.config')) / (
        f'systemd/user/{NAME}.service.d')
    drop_in.mkdir(parents=True)
    extra = drop_in / 'trial.conf'
    extra.write_text('[Service]\nEnvironment=VANTORIX_AUDIO=null\nExecStart=\n'
                     f'ExecStart="{ROOT}/run.sh" --port 0\n'
                     f'Environment="XDG_CONFIG_HOME={folder}/config"\n', encoding='utf-8')
    try:
        # Given a folder, it makes none in the music that this user's own player.ini names.
        told = run(ROOT / 'packaging/service.sh', 'install', folder / 'given', env=environment)
        if told.returncode != 0:
            raise RuntimeError(told.stdout + told.stderr)
        server = [ROOT / 'build/release/bin/vantorix-standin', '--address', '--data', folder / 'vantorix/server']
        until('the house has an address', lambda: run(*server).returncode == 0)
        house = House(run(*server).stdout.strip())
        until('the player is ready', lambda: house.get('/api/state')['plugin']['state'] == 'ready')
        albums = '/api/library?category=Album&limit=1'
        until('it has music', lambda: house.get(albums)['names'])
        house.post('/api/play', {'category': 'Album', 'name': house.get(albums)['names'][0]})
        until('it plays', lambda: house.get('/api/player')['position'] > 1)
        control('stop', NAME)
        result = control('show', '--property=Result,ActiveState', NAME).stdout.split()
        if sorted(result) != ['ActiveState=inactive', 'Result=success']:
            raise RuntimeError(f'It has not ended in order: {result}')
    finally:
        run(ROOT / 'packaging/service.sh', 'remove', env=environment)
        extra.unlink()
        drop_in.rmdir()
    print('The house has played in its sandbox')


def main():
    os.environ.setdefault('HOME', str(pathlib.Path.home()))
    with tempfile.TemporaryDirectory(dir=pathlib.Path.home(), prefix='.vantorix-trial-') as name:
        folder = pathlib.Path(name)
        score(folder)
        paths(folder)
        lay_out(folder)
        stays_out(folder)
        if control('is-system-running').stdout.strip() not in ('running', 'degraded'):
            print('No systemd runs for this user here: the service is not started')
        elif is_up(pathlib.Path(os.environ['XDG_RUNTIME_DIR']) / 'vantorix/bus'):
            print('A house of this user is up: the service is not started beside it')
        else:
            try_it(folder)


if __name__ == '__main__':
    main()
