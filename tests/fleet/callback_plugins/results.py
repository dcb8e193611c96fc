"""Writes each result of a run as one line of JSON, and the summary at its end, for the tests."""

import json

from ansible.plugins.callback import CallbackBase

DOCUMENTATION = """
name: results
type: stdout
short_description: each result as a line of JSON
description: [each result as a line of JSON]
"""


class CallbackModule(CallbackBase):
    CALLBACK_VERSION = 2.0
    CALLBACK_TYPE = "stdout"
    CALLBACK_NAME = "results"

    def _result(self, result, **_options):
        print(json.dumps({"host": result._host.get_name(), "task": result.task_name, "result": result._result},
                         default=str))

    v2_runner_on_ok = v2_runner_on_failed = v2_runner_on_unreachable = v2_runner_on_skipped = _result

    def v2_playbook_on_stats(self, stats):
        print(json.dumps({"stats": {host: stats.summarize(host) for host in stats.processed}}))
