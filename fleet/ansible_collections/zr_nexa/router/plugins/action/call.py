"""Connects or disconnects a profile, and waits until it is so."""
from __future__ import absolute_import, division, print_function

__metaclass__ = type

from ansible.plugins.action import ActionBase

from ansible_collections.zr_nexa.router.plugins.plugin_utils import zr_nexactl as ctl


class ActionModule(ActionBase):
    TRANSFERS_FILES = False
    _supports_check_mode = True
    _supports_async = False

    def run(self, tmp=None, task_vars=None):
        result = super(ActionModule, self).run(tmp, task_vars or {})
        del tmp
        _unused, args = self.validate_argument_spec(argument_spec={
            "profile": {"type": "str", "required": True},
            "state": {"choices": ["connected", "disconnected"], "default": "connected"},
            "family": {"choices": ["4", "6", "46"]},
            "wait": {"type": "int", "default": 60},
            "executable": {"type": "str", "default": "zr_nexactl"},
        })
        program = ctl.Program(self, args)
        status = program.run(["status", "--json"])
        profile = self._profile(status.document("profiles"), args["profile"])
        if status.document("profiles") is None:
            return dict(result, **ctl.failure(status))
        if profile is None:
            return dict(result, failed=True, msg="there is no profile %s on this module" % args["profile"])
        before = self._states(profile, args["family"])
        result["changed"] = any(state != args["state"] for state in before.values())
        if not result["changed"] or self._task.check_mode:
            result["calls"] = before
            return result

        words = ["connect" if args["state"] == "connected" else "disconnect", str(profile["handle"]),
                 "--wait", str(args["wait"])]
        if args["family"]:
            words += ["--family", args["family"]]
        answer = program.run(words)
        after = program.run(["status", "--json"])
        profile = self._profile(after.document("profiles"), args["profile"])
        result["calls"] = self._states(profile, args["family"]) if profile else {}
        if answer.status != ctl.DONE:
            result.update(ctl.failure(answer))
            result["changed"] = result["calls"] != before
        return result

    @staticmethod
    def _profile(status, name):
        """The profile of a handle, or of the name that zr_nexactl gives one: profile-<handle>."""
        handle = name[len("profile-"):] if name.startswith("profile-") else name
        for profile in (status or {}).get("profiles", []):
            if str(profile["handle"]) == handle:
                return profile
        return None

    @staticmethod
    def _states(profile, family):
        """The families that are asked for, and their states: those that were said, else what the profile dials."""
        dialled = {"ipv4": "4", "ipv6": "6"}.get(profile.get("family"), "46")
        return {
            name: profile[name].get("state", "")
            for name, digit in (("ipv4", "4"), ("ipv6", "6")) if digit in (family or dialled)
        }
