"""Connects or disconnects a profile, and waits until it is so."""
from __future__ import absolute_import, division, print_function

__metaclass__ = type

from ansible_collections.zr_nexa.router.plugins.plugin_utils import zr_nexactl as ctl
from ansible_collections.zr_nexa.router.plugins.plugin_utils.action import RouterAction


class ActionModule(RouterAction):
    ARGUMENTS = {
        "profile": {"type": "str", "required": True},
        "state": {"choices": ["connected", "disconnected"], "default": "connected"},
        "family": {"choices": ["4", "6", "46"]},
        "wait": {"type": "int", "default": 60},
    }

    def _work(self):
        wanted, family = self._args["state"], self._args["family"]
        answer = self._program.run(["status", "--json"])
        status = answer.document("profiles")
        if status is None:
            return ctl.failure(answer)
        profile = self._profile(status)
        if profile is None:
            return {"failed": True, "msg": "there is no profile %s on this module" % self._args["profile"]}
        before = self._states(profile)
        changed = any(state != wanted for state in before.values())
        if not changed or self._task.check_mode:
            return {"changed": changed, "calls": before}

        words = ["connect" if wanted == "connected" else "disconnect", str(profile["handle"]),
                 "--wait", str(self._args["wait"])]
        if family:
            words += ["--family", family]
        answer = self._program.run(words)
        profile = self._profile(self._program.run(["status", "--json"]).document("profiles") or {})
        calls = self._states(profile) if profile else {}
        if answer.status == ctl.DONE:
            return {"changed": True, "calls": calls}
        return dict(ctl.failure(answer), changed=calls != before, calls=calls)

    def _profile(self, status):
        """The profile of a handle, or of the name that zr_nexactl gives one: profile-<handle>."""
        name = self._args["profile"]
        handle = name[len("profile-"):] if name.startswith("profile-") else name
        for profile in status.get("profiles", []):
            if str(profile["handle"]) == handle:
                return profile
        return None

    def _states(self, profile):
        """The families that are asked for, and their states: those that were said, else what the profile dials."""
        family = self._args["family"] or {"ipv4": "4", "ipv6": "6"}.get(profile.get("family"), "46")
        return {
            name: profile[name].get("state", "")
            for name, digit in (("ipv4", "4"), ("ipv6", "6")) if digit in family
        }
