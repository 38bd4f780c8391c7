#!/usr/bin/python
"""Makes a profile exist with given settings, or not exist, by way of tunadm.

The parameters are the role's variables; meta/argument_specs.yml explains them.
"""

import json
import os
import re
import time
import unicodedata

from ansible.module_utils.basic import AnsibleModule

PROFILE_NOT_FOUND = 0x12001001
# The init system's command failed, or was ended by a signal.
CHILD_FAILED = (0x16001001, 0x16001002)

DEFAULT_PORT = 8096
NO_CODE = '###'
# The name that tunadm gives to the profile it makes when the last one is deleted.
DEFAULT_NAME = 'profile'
# A daemon that was stopped counts as running for less than this many seconds.
STALE_AFTER = 7

SETTINGS = ('helmsman', 'network', 'log_level', 'invitation')

HELMSMAN = re.compile(r'[A-Za-z0-9][A-Za-z0-9._-]{0,252}(?::([1-9][0-9]{0,4}))?')
# What Linux takes as the name of an interface, or of an alias such as eth0:1.
NETWORK = re.compile(r'[!-.0-~]{1,15}')
# Trimmed as tunadm trims it. The program reads lines of up to 7,999 bytes, key and line feed
# included.
INVITATION = re.compile(r'[!-~](?:[ -~]{0,7980}[!-~])?')


def selects(name):
    """Whether tunadm takes `name` as a way to choose a profile and not as the name of one."""
    return name in ('', '.current', '.factory', '--active') or name.startswith('dir=')


def is_helmsman(text):
    match = HELMSMAN.fullmatch(text)
    return bool(match) and int(match.group(1) or DEFAULT_PORT) <= 65535


def complaint(params):
    """What tunadm would not store as given; None if all is well. Never quotes the invitation."""
    name, network, invitation = params['name'], params['network'], params['invitation']
    if selects(name):
        return 'tunadm_profile_name: %r chooses a profile and cannot be the name of one' % name
    if any(unicodedata.category(char) in ('Cc', 'Cs') for char in name):
        return 'tunadm_profile_name: %r has control characters' % name
    if not params['program'].startswith('/'):
        return 'tunadm_profile_program: %r is not an absolute path' % params['program']
    if params['wait'] < 10:
        return 'tunadm_profile_wait: less than 10 seconds do not tell whether the daemon runs'
    if params['state'] == 'absent':
        return None
    if not is_helmsman(params['helmsman']):
        return ('tunadm_profile_helmsman: %r is not a host name or an IPv4 address, with or without'
                ' a colon and a port from 1 to 65535' % params['helmsman'])
    if network and not NETWORK.fullmatch(network):
        return 'tunadm_profile_network: %r cannot be the name of an interface' % network
    if invitation and not INVITATION.fullmatch(invitation):
        return ('tunadm_profile_invitation: only printable ASCII characters are stored, no blanks'
                ' at the ends, and at most 7982 in all')
    return None


def wanted_settings(params):
    """The settings that were asked for, as tunadm shows them."""
    wanted = {key: params[key] for key in SETTINGS if params[key]}
    if ':' not in wanted['helmsman']:
        wanted['helmsman'] += ':%d' % DEFAULT_PORT
    if wanted.get('invitation') == NO_CODE:
        wanted['invitation'] = ''
    return wanted


def as_words(settings):
    """The words of a tunadm command that make `settings` come true."""
    return ['%s=%s' % (key, value or NO_CODE) for key, value in settings.items()]


class Tunadm:
    """The commands of tunadm. Each fails the module when its status is not a success."""

    def __init__(self, module):
        self.module = module
        self.program = module.params['program']
        system = module.params['sys']
        self.system = ['sys=' + system] if system else []

    def call(self, *words, tolerated=()):
        """The result of a command whose status is a success or one of `tolerated`."""
        exit_code, output, errors = self.module.run_command(
            [self.program] + list(words) + ['output=json'], expand_user_and_vars=False)
        command = ' '.join(words[:2])
        try:
            result = json.loads(output)
            code = result['status_code']
        except (ValueError, KeyError, TypeError):
            # Output is quoted only where it says that the command line was refused: part of a result
            # may hold an invitation code.
            reason = output if exit_code else 'no result in JSON\n'
            self.module.fail_json(msg='%s: %s' % (command, (reason + errors).strip()))
        if code >> 24 != 0 and code not in tolerated:
            self.module.fail_json(msg=described(command, result), init_system=errors.strip())
        return result

    def details(self, selector):
        """What tunadm shows of a profile; None if there is none."""
        result = self.call('profile', 'details', selector, tolerated=[PROFILE_NOT_FOUND])
        return None if result['status_code'] == PROFILE_NOT_FOUND else result['details']

    def is_running(self, directory):
        """Whether the daemon runs with the profile of that directory."""
        if self.call('list', 'profiles')['current_dir'] != directory:
            return False
        return self.call('service', 'status')['running']


def described(command, result):
    """A status as text; what tunadm says beside it names parameters, but no values."""
    texts = [result['status_text'], result.get('status_details')]
    return '%s: %s (0x%08x)' % (command, ': '.join(filter(None, texts)), result['status_code'])


class Profile:
    """The profile that the parameters name, in the state that they ask for."""

    def __init__(self, module):
        self.module = module
        self.params = module.params
        self.name = module.params['name']
        self.tunadm = Tunadm(module)
        self.wanted = {}

    def shown(self, settings, running):
        """A state of the profile for a diff, without its invitation code."""
        code, wanted_code = settings['invitation'], self.wanted.get('invitation')
        shown = dict(settings, name=self.name, invitation='set' if code else 'none')
        if code and wanted_code and code != wanted_code:
            shown['invitation'] = 'another one'
        if self.params['active']:
            shown['running'] = str(running).lower()
        return ''.join('%s: %s\n' % item for item in sorted(shown.items()))

    def result(self, before, after):
        result = {'changed': before != after}
        if self.module._diff:
            header = 'profile ' + self.name
            result['diff'] = {'before': before, 'after': after,
                              'before_header': header, 'after_header': header}
        return result

    def settings(self):
        """The profile's directory and its settings; None twice if there is no profile."""
        details = self.tunadm.details(self.name)
        if details is None:
            return None, None
        return details['profile_dir'], {key: details.get(key, '') for key in SETTINGS}

    def settings_when_new(self):
        """What the profile has if it is created without settings."""
        factory = self.tunadm.details('.factory')
        return {'helmsman': '', 'network': 'auto', 'log_level': factory['log_level'],
                'invitation': factory['invitation']}

    def differences(self, settings):
        return {key: value for key, value in self.wanted.items() if settings[key] != value}

    def await_running(self, directory, running, earliest, told=None):
        """Waits until the daemon's state is `running`, from the time `earliest` on."""
        deadline = time.monotonic() + self.params['wait']
        while time.monotonic() < earliest or self.tunadm.is_running(directory) != running:
            if time.monotonic() > deadline:
                verb = 'reported' if running else 'stopped'
                self.module.fail_json(msg='; '.join(filter(None, [
                    'the daemon has not %s within %d seconds' % (verb, self.params['wait']), told])))
            time.sleep(0.5)

    def create(self):
        # A new profile gets the factory's log level, whatever is asked for. Another name than the
        # wanted one would be no help.
        settings = {key: value for key, value in self.wanted.items() if key != 'log_level'}
        self.tunadm.call('profile', 'create', self.name, 'allow_rename=no', *as_words(settings))

    def modify(self, changes, directory, runs):
        words = as_words(changes)
        if not runs:
            self.tunadm.call('profile', 'modify', self.name, *words)
            return
        # The bare word makes the service restart around the change. If that fails, so does the
        # task: nothing else would tell that the daemon still runs with the old settings.
        self.tunadm.call('profile', 'modify', self.name, 'activate', *words, *self.tunadm.system)
        self.await_running(directory, True, time.monotonic())

    def activate(self, directory):
        result = self.tunadm.call('profile', 'activate', self.name, *self.tunadm.system,
                                  tolerated=CHILD_FAILED)
        now = time.monotonic()
        if result['status_code'] not in CHILD_FAILED:
            self.await_running(directory, True, now)
            return
        # That includes a stop that found nothing to stop, after which the start was made all the
        # same. The daemon's report decides, once it cannot be one from before.
        told = described('profile activate', result)
        self.await_running(directory, True, now + STALE_AFTER, told)

    def make_present(self):
        self.wanted = wanted_settings(self.params)
        directory, settings = self.settings()
        runs = directory is not None and self.tunadm.is_running(directory)
        before = '' if directory is None else self.shown(settings, runs)
        if directory is None:
            settings = self.settings_when_new()
        after = self.shown(dict(settings, **self.wanted), runs or self.params['active'])
        # Another code than the wanted one is shown as such, so equal texts mean equal settings.
        if before == after or self.module.check_mode:
            return self.result(before, after)

        if directory is None:
            self.create()
            directory, settings = self.settings()
        if self.differences(settings):
            self.modify(self.differences(settings), directory, runs)
        if self.params['active'] and not runs:
            self.activate(directory)

        settings = self.settings()[1]
        if self.differences(settings):
            self.module.fail_json(msg='changed without effect: '
                                  + ', '.join(self.differences(settings)))
        return self.result(before, after)

    def make_absent(self):
        directory, settings = self.settings()
        if directory is None:
            return self.result('', '')
        runs = self.tunadm.is_running(directory)
        before = self.shown(settings, runs)
        if self.name == DEFAULT_NAME and len(self.tunadm.call('list', 'profiles')['profiles']) == 1:
            self.module.fail_json(msg='%s is the only profile: when it is deleted, tunadm makes a '
                                  'new one of the same name' % self.name)
        if self.module.check_mode:
            return self.result(before, '')

        if runs:
            # One that has ended by itself cannot be stopped.
            self.tunadm.call('service', 'stop', *self.tunadm.system, tolerated=CHILD_FAILED)
            self.await_running(directory, False, time.monotonic())
        self.tunadm.call('profile', 'delete', self.name)
        if self.settings()[0] is not None:
            self.module.fail_json(msg='the profile is still there')
        return self.result(before, '')


def main():
    module = AnsibleModule(
        argument_spec={
            'name': {'type': 'str', 'required': True},
            'state': {'type': 'str', 'choices': ['present', 'absent'], 'default': 'present'},
            'helmsman': {'type': 'str', 'default': ''},
            'network': {'type': 'str', 'default': ''},
            'invitation': {'type': 'str', 'default': '', 'no_log': True},
            'log_level': {'type': 'str', 'default': '',
                          'choices': ['', 'trace', 'debug', 'info', 'warning', 'error', 'fatal']},
            'active': {'type': 'bool', 'default': False},
            'sys': {'type': 'str', 'choices': ['', 'systemd', 'initd', 'upstart'], 'default': ''},
            'program': {'type': 'path', 'default': '/usr/sbin/tunadm'},
            'wait': {'type': 'int', 'default': 30},
        },
        supports_check_mode=True)
    refusal = complaint(module.params)
    if refusal:
        module.fail_json(msg=refusal)
    if not os.access(module.params['program'], os.X_OK):
        module.fail_json(msg='there is no program %s' % module.params['program'])
    profile = Profile(module)
    if module.params['state'] == 'present':
        module.exit_json(**profile.make_present())
    module.exit_json(**profile.make_absent())


if __name__ == '__main__':
    main()
