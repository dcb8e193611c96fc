"""A hundred modules over the local connection."""

import json
import os
import pathlib
import signal
import subprocess
import unittest

import yaml

from fleet import CHANGES, COLLECTIONS, DOCUMENT, Fleet, PROGRAM, Run, SITE, end, wait_for

COUNT = int(os.environ.get("ZR_NEXA_FLEET_MODULES", "100"))
NAMES = {"module-%03d" % i for i in range(COUNT)}
BROUGHT = "Bring the module to the baseline"

GATHER = """
- name: Gather
  hosts: modules
  gather_facts: false
  environment: "{{ module_environment }}"
  tasks:
    - name: Gather
      zr_nexa.router.config:
        state: gathered
        executable: "{{ baseline_executable }}"
        state_dir: "{{ baseline_state_dir }}"
"""


class FleetTest(unittest.TestCase):
    """Every test has modules of its own."""

    count = COUNT

    def setUp(self):
        self.fleet = Fleet(self.count)
        self.addCleanup(self.fleet.close)

    def changing_calls(self):
        return {module.name: module.changing_calls() for module in self.fleet.modules if module.changing_calls()}

    def shown(self):
        return {module.name: module.shown() for module in self.fleet.modules}

    def forget_logs(self):
        for module in self.fleet.modules:
            module.forget_log()


class AllAlike(FleetTest):
    def test_all_are_changed_once_and_check_mode_says_so_before(self):
        fresh = self.fleet.module(0).shown()

        foreseen = self.fleet.play("--check", "--diff")
        self.assertEqual(foreseen.status, 0, foreseen.text)
        self.assertEqual(foreseen.hosts("changed"), NAMES)
        self.assertEqual(self.changing_calls(), {})
        self.assertEqual(self.fleet.module(COUNT - 1).shown(), fresh)

        first = self.fleet.play()
        self.assertEqual(first.status, 0, first.text)
        self.assertEqual(first.hosts("changed"), NAMES)
        self.assertEqual(set(self.changing_calls()), NAMES)
        for name in NAMES:
            said = foreseen.results(BROUGHT)[name]
            done = first.results(BROUGHT)[name]
            self.assertEqual(set(done["changes"]), CHANGES)
            self.assertEqual(said["changes"], done["changes"])
            self.assertEqual(said["before"], done["before"])
            self.assertNotEqual(done["before"], done["after"])
            self.assertEqual(done["after"]["upnp"]["notify_seconds"], 600)
            self.assertIn("upnp.notify_seconds: 1800 -> 600\n", said["diff"]["prepared"])

        self.forget_logs()
        for words in (["--check"], []):
            second = self.fleet.play(*words)
            self.assertEqual(second.status, 0, second.text)
            self.assertEqual(second.hosts("changed"), set())
            self.assertEqual(second.hosts("ok"), NAMES)
            self.assertEqual(self.changing_calls(), {})


class OneFails(FleetTest):
    FAULTY = 42 if COUNT > 60 else 1

    def setUp(self):
        super().setUp()
        self.faulty = self.fleet.module(self.FAULTY)
        self.fleet.variables[self.faulty.name] = {"more_environment": {"MOBILE_AP_FAULTS": "SetNatType=fail:48"}}
        self.before = self.faulty.shown()

    def test_only_that_one_and_it_is_as_before(self):
        run = self.fleet.play()
        self.assertEqual(run.hosts("failures"), {self.faulty.name}, run.text)
        self.assertEqual(run.hosts("changed"), NAMES - {self.faulty.name})
        self.assertEqual(self.faulty.shown(), self.before)
        result = run.results(BROUGHT)[self.faulty.name]
        self.assertEqual((result["changed"], result["changes"], result["after"]), (False, [], result["before"]))
        message = result["msg"]
        for part in ("a change was refused, and all is as before", "profiles.office.nat.type",
                     "zr_nexa_nat_type_set_v1", "the service answered 48"):
            self.assertIn(part, message)
        others = {module.run("diff", self.written(DOCUMENT)).stdout for module in self.fleet.modules
                  if module is not self.faulty}
        self.assertEqual(others, {""})

    def written(self, document):
        path = self.fleet.control / "document.yaml"
        path.write_text(json.dumps(document))
        return str(path)

    def test_a_rolling_change_stops_behind_the_batch(self):
        fresh = self.before
        run = self.fleet.play(batches=[1, self.FAULTY + 8, "100%"])
        last = self.FAULTY + 9
        self.assertNotEqual(run.status, 0)
        self.assertEqual(run.hosts("failures"), {self.faulty.name})
        reached = {"module-%03d" % i for i in range(min(last, COUNT))}
        self.assertEqual(run.hosts("changed"), reached - {self.faulty.name})
        self.assertEqual(set(self.changing_calls()), reached)
        for module in self.fleet.modules[last:]:
            self.assertEqual(module.shown(), fresh)


class Stopped(FleetTest):
    count = 12

    def setUp(self):
        super().setUp()
        self.fresh = self.fleet.module(0).shown()
        for module in self.fleet.modules:
            module.environment["MOBILE_AP_FAULTS"] = "SetLANConfig=delay:1500"  # far from done when it is stopped

    def old(self):
        """How many are old; the others are new."""
        wait_for(lambda: not any(module.processes() for module in self.fleet.modules))
        path = self.fleet.control / "document.json"
        path.write_text(json.dumps(DOCUMENT))
        gathered = self.fleet.play(playbook=self.fleet.book(GATHER)).results("Gather")
        self.assertEqual({name: result["pending"] for name, result in gathered.items()},
                         {module.name: "" for module in self.fleet.modules})
        count = 0
        for module in self.fleet.modules:
            if module.shown() == self.fresh:
                count += 1
            else:
                self.assertEqual(module.run("diff", str(path)).stdout, "", module.name)
        return count

    def interrupted(self, send, confirm_within=None):
        run = self.fleet.start(forks=4, baseline_confirm_within=confirm_within)
        wait_for(lambda: sum(bool(module.changing_calls()) for module in self.fleet.modules) >= 2)
        send(run.pid, signal.SIGINT)
        run.communicate()
        self.assertNotEqual(run.returncode, 0)
        wait_for(lambda: not any(module.processes() for module in self.fleet.modules))
        wait_for(lambda: all(module.run("pending").returncode == 0 for module in self.fleet.modules))
        self.assertGreater(self.old(), 0)

        for module in self.fleet.modules:
            del module.environment["MOBILE_AP_FAULTS"]
        again = self.fleet.play()
        self.assertEqual(again.status, 0, again.text)
        self.assertEqual(self.old(), 0)

    def test_interrupted_at_the_controller(self):
        self.interrupted(os.kill)

    def test_interrupted_with_all_that_it_has_started(self):
        self.interrupted(os.killpg)

    def test_interrupted_before_anything_is_confirmed(self):
        self.interrupted(os.killpg, confirm_within=3)


class Killed(FleetTest):
    count = 2

    def test_what_is_pending_is_gathered_and_a_run_again_completes(self):
        victim = self.fleet.module(1)
        victim.environment["MOBILE_AP_FAULTS"] = "SetLANConfig#2=delay:20000"
        run = self.fleet.start(baseline_confirm_within=None)
        wait_for(lambda: "SetLANConfig" in victim.changing_calls())
        for process in victim.processes():
            end(process)
        out, err = run.communicate()
        said = Run(run.returncode, out, err)
        self.assertEqual(said.hosts("failures") | said.hosts("unreachable"), {victim.name}, said.text)

        del victim.environment["MOBILE_AP_FAULTS"]
        gathered = self.fleet.play(playbook=self.fleet.book(GATHER)).results("Gather")
        self.assertEqual(gathered["module-000"]["pending"], "")
        self.assertIn("was cut off", gathered[victim.name]["pending"])
        killed = said.results(BROUGHT)[victim.name]
        self.assertIn("zr_nexactl was ended by signal 9", killed["msg"])
        self.assertTrue(killed["changed"])
        self.assertIn("lans.10", killed["changes"])
        self.assertIn("10", killed["after"]["lans"])

        again = self.fleet.play(baseline_confirm_within=None)
        self.assertEqual(again.status, 0, again.text)
        self.assertEqual(again.hosts("changed"), {victim.name})
        self.assertEqual(again.results(BROUGHT)[victim.name]["after"],
                         again.results(BROUGHT)["module-000"]["after"])
        self.assertEqual(self.pending(victim), "nothing is pending\n")

    def test_one_that_was_to_be_confirmed_takes_itself_back(self):
        victim = self.fleet.module(1)
        before = victim.shown()
        victim.environment["MOBILE_AP_FAULTS"] = "SetUPNPNotifyInterval=delay:20000"
        run = self.fleet.start(baseline_confirm_within=5)
        wait_for(lambda: "SetNatType" in victim.changing_calls())
        for process in victim.processes():
            end(process)
        out, err = run.communicate()
        self.assertIn("what is pending takes itself back when its 5 s are over",
                      Run(run.returncode, out, err).results(BROUGHT)[victim.name]["msg"])
        wait_for(lambda: self.pending(victim) == "nothing is pending\n")
        self.assertEqual(victim.shown(), before)

    def test_one_that_was_killed_when_all_was_done_is_kept(self):
        victim = self.fleet.module(1)
        self.fleet.play(baseline_confirm_within=None)
        document = self.fleet.control / "document.json"
        document.write_text(json.dumps({"version": 1, "upnp": {"notify_seconds": 900}}))
        environment = dict(os.environ, MOBILE_AP_FAULTS="SetUPNPNotifyInterval=delay:20000", **victim.environment)
        with subprocess.Popen([PROGRAM, "apply", "--state", victim.state_dir(), document], env=environment,
                              stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL) as cut_off:
            wait_for(lambda: (pathlib.Path(victim.state_dir()) / "held.yaml").exists())
            cut_off.kill()
        self.assertIn("was cut off", self.pending(victim))
        again = self.fleet.play(baseline_confirm_within=None)
        self.assertEqual(again.hosts("changed"), set(), again.text)
        self.assertIn("an apply was cut off before", str(again.results(BROUGHT)[victim.name]["warnings"]))
        self.assertEqual(self.pending(victim), "nothing is pending\n")

    def test_one_that_nobody_has_confirmed_is_confirmed_by_a_run_again(self):
        module = self.fleet.module(0)
        document = self.fleet.control / "document.json"
        document.write_text(json.dumps(DOCUMENT))
        module.run("apply", "--confirm-within", "300", "--state", module.state_dir(), document)
        self.assertIn("waits to be confirmed", self.pending(module))
        again = self.fleet.play()
        self.assertEqual(again.hosts("changed"), {"module-001"}, again.text)
        self.assertEqual(again.results(BROUGHT)[module.name]["warnings"],
                         ["an apply from before waited to be confirmed; it is kept"])
        self.assertEqual(self.pending(module), "nothing is pending\n")

    @staticmethod
    def pending(module):
        return module.run("pending", "--state", module.state_dir()).stdout


class Words(FleetTest):
    """Each module of the collection, on one module of the host platform."""

    count = 1

    def tasks(self, *tasks, words=()):
        text = """
- name: Words
  hosts: modules
  gather_facts: false
  environment: "{{ module_environment }}"
  ignore_errors: true  # each task is told by itself
  module_defaults:
    group/zr_nexa.router.router:
      executable: "{{ baseline_executable }}"
  tasks:
"""
        for number, task in enumerate(tasks):
            text += "    - name: Task %d\n      %s\n" % (number, task.strip().replace("\n", "\n      "))
        run = self.fleet.play(*words, playbook=self.fleet.book(text))
        return [run.results("Task %d" % number).get("module-000", {}) for number in range(len(tasks))], run

    def test_replaced_takes_away_what_is_not_named(self):
        with_lan = "zr_nexa.router.config:\n  config: {version: 1, lans: {10: {vlan: {interface: ethernet}}}}"
        without = "zr_nexa.router.config:\n  config: {version: 1, lans: {0: {}}}\n  state: %s"
        results, run = self.tasks(with_lan, without % "merged", without % "replaced")
        self.assertEqual([result.get("changes") for result in results], [["lans.10"], [], ["lans.10"]], run.text)
        self.assertNotIn("10", results[2]["after"]["lans"])

    def test_a_file_is_sent_as_it_is(self):
        path = self.fleet.control / "document.yaml"
        path.write_text("version: 1\nreservations:\n  192.168.225.40: {mac: 01:02:03:04:05:06, name: no}\n")
        results, run = self.tasks("zr_nexa.router.config:\n  src: %s" % path)
        entry = results[0]["after"]["reservations"]["192.168.225.40"]
        self.assertEqual((entry["mac"], entry["name"]), ("01:02:03:04:05:06", "no"), run.text)

    def test_rendered_asks_no_module(self):
        rendered = "zr_nexa.router.config:\n  state: rendered\n  config: {version: 1, upnp: {%s: yes}}"
        results, run = self.tasks(rendered % "enabled", rendered % "enabeld")
        self.assertEqual(results[0]["rendered"], {"version": 1, "upnp": {"enabled": True}}, run.text)
        self.assertIn("upnp.enabeld: no such key; did you mean enabled?", results[1]["msg"])
        self.assertFalse(self.fleet.module(0).log.exists())

    def test_a_refused_document_names_its_source(self):
        path = self.fleet.control / "document.yaml"
        path.write_text("version: 1\nupnp:\n  enabeld: yes\n")
        results, run = self.tasks("zr_nexa.router.config:\n  src: %s" % path,
                                  "zr_nexa.router.config:\n  config: |\n    version: 1\n    upnp: {enabeld: yes}",
                                  "zr_nexa.router.config:\n  config: {version: 1, reservations: {192.168.225.40: "
                                  "{mac: 10:20:30:40:50:51}}}",
                                  "zr_nexa.router.config:\n  config: {version: 1, lans: {0: {address: 10.0.0.1/24}}}")
        wrong = "upnp.enabeld: no such key; did you mean enabled?"
        self.assertEqual([result.get("msg") for result in results], [
            "the document is wrong: %s:3:3: %s" % (path, wrong),
            "the document is wrong: config:2:8: %s" % wrong,
            "the document is wrong: reservations.192.168.225.40.mac: six pairs of hexadecimal digits with colons: "
            "write \"00:01:02:03:04:0a\", not 8041827051; Ansible's YAML reads some MAC addresses, words and numbers "
            "otherwise: put them in quotes, or give the document as src",
            "the document is wrong: lans.0.dhcp.first: 192.168.225.20 is outside of 10.0.0.1/24; "
            "lans.0.dhcp.last: 192.168.225.60 is outside of 10.0.0.1/24",
        ], run.text)

    def test_a_template_and_keys_and_signs_of_any_kind(self):
        path = self.fleet.control / "document.yaml.j2"
        path.write_text("version: 1\nlans:\n  {{ 5 * 2 }}:\n    vlan: {interface: ethernet}\n")
        results, run = self.tasks(
            "zr_nexa.router.config:\n  config: \"{{ lookup('template', '%s') }}\"" % path,
            "zr_nexa.router.config:\n  config: {version: 1, lans: {10: {address: 192.168.11.1/24, "
            "dhcp: {first: 192.168.11.20, last: 192.168.11.60}}}, reservations: "
            "{192.168.225.40: {mac: '01:02:03:04:05:06', name: '\U0001f600'}}}")
        self.assertIn("10", results[0]["after"]["lans"], run.text)
        self.assertIn("after", results[1], run.text)
        self.assertEqual(results[1]["after"]["lans"]["10"]["address"], "192.168.11.1/24", run.text)
        self.assertEqual(results[1]["after"]["reservations"]["192.168.225.40"]["name"], "\U0001f600")

    def test_a_template_may_stand_for_a_number(self):
        results, run = self.tasks(
            "zr_nexa.router.config:\n  config: {version: 1, upnp: {notify_seconds: \"{{ 500 + 100 }}\"}, profiles: "
            "{office: {dial: {apn_index: \"{{ nothing | default(3) }}\", apn_name: '300'}, vlans: [\"{{ 5 * 2 }}\"]}}, "
            "lans: {10: {vlan: {interface: ethernet}}}, general: {gateway_url: '007'}}")
        after = results[0]["after"]
        self.assertEqual(after["upnp"]["notify_seconds"], 600, run.text)
        self.assertEqual(after["profiles"]["profile-2"]["dial"]["apn_name"], "300")
        self.assertEqual(after["profiles"]["profile-2"]["vlans"], [10])
        self.assertEqual(after["general"]["gateway_url"], "007")

    def test_the_examples_are_taken(self):
        source = COLLECTIONS / "ansible_collections/zr_nexa/router/plugins/modules/config.py"
        examples = yaml.safe_load(source.read_text().split('EXAMPLES = r"""')[1].split('"""')[0])
        documents = [example["zr_nexa.router.config"]["config"] for example in examples
                     if "config" in example["zr_nexa.router.config"]]
        self.assertEqual(len(documents), 2)
        for document in documents:
            path = self.fleet.control / "example.json"
            path.write_text(json.dumps(document))
            done = self.fleet.module(0).run("diff", str(path))
            self.assertEqual(done.returncode, 1, done.stderr)

    def test_the_inventory_of_the_page(self):
        folder = self.fleet.control / "page"
        (folder / "state").mkdir(parents=True)
        page = (COLLECTIONS.parent / "docs/fleet.md").read_text()
        text = page.split("```yaml\n")[1].split("```")[0].replace("/tmp/module", str(folder))
        inventory = folder / "pc.yml"
        inventory.write_text(text.replace("/usr/bin/zr_nexactl", str(PROGRAM)))
        done = subprocess.run(["ansible-playbook", "-i", inventory, SITE], env=self.fleet.environment(1),
                              capture_output=True, text=True, check=False)
        run = Run(done.returncode, done.stdout, done.stderr)
        self.assertEqual(run.hosts("changed"), {"pc"}, run.text)

    def test_a_document_with_a_nul_is_not_sent(self):
        path = self.fleet.control / "document.yaml"
        path.write_text("version: 1\ngeneral: {gateway_url: x\0.home}\n")
        results, run = self.tasks("zr_nexa.router.config:\n  src: %s" % path)
        self.assertEqual(results[0]["msg"], "the document is wrong: control characters are not allowed", run.text)
        self.assertFalse(self.fleet.module(0).log.exists())

    def test_another_address_needs_a_connection_that_goes_to_one(self):
        results, run = self.tasks("zr_nexa.router.config:\n  config: {version: 1, upnp: {enabled: true}}\n"
                                  "  confirm_within: 60\n  answers_at: 192.0.2.1")
        self.assertEqual(results[0]["msg"], "answers_at: the connection local goes to no other address", run.text)
        self.assertFalse(self.fleet.module(0).log.exists())

    def test_what_is_no_zr_nexactl_is_told_by_what_it_says(self):
        program = self.fleet.control / "nologin"
        program.write_text("#!/bin/sh\necho This account is not available\nexit 1\n")
        program.chmod(0o755)
        results, run = self.tasks("zr_nexa.router.config:\n  state: gathered\n  executable: %s" % program,
                                  "zr_nexa.router.config:\n  state: gathers")
        self.assertIn("This account is not available", results[0]["msg"], run.text)
        self.assertIn("merged, replaced, gathered, rendered", results[1]["msg"])
        self.assertNotIn("NoneType", run.text)

    def test_what_is_encrypted_stands_in_no_file_and_no_output(self):
        secret = self.fleet.control / "password"
        secret.write_text("of the vault\n")
        path = self.fleet.control / "document.yaml"
        path.write_text("version: 1\nprofiles: {office: {dial: {apn_index: 3, apn_name: hidden.example}}}\n")
        vault = ["--vault-password-file", str(secret)]
        subprocess.run(["ansible-vault", "encrypt", *vault, path], env=self.fleet.environment(1), check=True,
                       capture_output=True)
        task = "zr_nexa.router.config:\n  src: %s\nno_log: true" % path
        results, run = self.tasks(task, words=[*vault, "-vvvv", "--diff"])
        self.assertTrue(results[0]["changed"], run.text)
        self.assertNotIn("hidden.example", run.text)
        self.assertIn("hidden.example", self.fleet.module(0).shown())
        left = [file for file in (self.fleet.control / "tmp").rglob("*") if file.is_file()]
        self.assertEqual(left, [])

    def test_check_mode_tells_what_is_interrupted(self):
        for words, config in ((["--check"], "confirm_within: 60\n  state: replaced\n  "), ([], "")):
            results, run = self.tasks("zr_nexa.router.config:\n  %sconfig: {version: 1, lans: {0: {address: "
                                      "192.168.10.1/24, dhcp: {first: 192.168.10.20, last: 192.168.10.60}}}}" % config,
                                      words=words)
            self.assertEqual(results[0]["changes"], ["lans.0.address", "lans.0.dhcp.first", "lans.0.dhcp.last"],
                             run.text)
            self.assertEqual(results[0]["notes"], [
                "LAN 0 is activated anew: its devices lose the connection for a moment; the module answers at "
                "192.168.10.1 then"])
            self.assertEqual(self.fleet.module(0).changing_calls() == [], bool(words))

    def test_refused_and_not_wholly_undone(self):
        self.fleet.module(0).environment["MOBILE_AP_FAULTS"] = (
            "SetNatType=fail:48,SetLANConfig#2=fail:3,SetLANConfig#3=fail:3")
        results, run = self.tasks(
            "zr_nexa.router.config:\n  config: {version: 1, lans: {0: {dhcp: {lease_seconds: 600}}}, profiles: {main: "
            "{dial: {apn_index: 1}, nat: {type: full-cone}}}}")
        result = results[0]
        self.assertIn("refused and not wholly undone", result["msg"], run.text)
        self.assertEqual((result["rc"], result["changed"], result["changes"], result["left"]),
                         (5, True, ["lans.0.dhcp.lease_seconds"], ["lans.0.dhcp.lease_seconds: 600 -> 43200"]))
        self.assertEqual(result["after"]["lans"]["0"]["dhcp"]["lease_seconds"], 600)

    def test_another_version_of_the_document(self):
        results, _run = self.tasks("zr_nexa.router.config:\n  config: {version: 2}")
        self.assertIn("does not take this version of the document", results[0]["msg"])

    def test_a_state_folder_that_is_refused_is_not_taken_for_the_document(self):
        folder = self.fleet.module(0).folder / "open"
        folder.mkdir()
        folder.chmod(0o777)
        for state in ("merged", "gathered"):
            results, _run = self.tasks("zr_nexa.router.config:\n  state: %s\n  state_dir: %s%s" % (
                state, folder, "\n  config: {version: 1}" if state == "merged" else ""))
            self.assertIn("the words or the state folder are wrong: %s: others may write into it" % folder,
                          results[0]["msg"])

    def test_no_program_there(self):
        results, _run = self.tasks("zr_nexa.router.config:\n  state: gathered\n  executable: /nowhere/zr_nexactl")
        self.assertIn("/nowhere/zr_nexactl cannot be run on this module", results[0]["msg"])

    def test_no_service(self):
        self.fleet.module(0).environment["MOBILE_AP_FAULTS"] = "IsReady=notready"
        results, _run = self.tasks("zr_nexa.router.config:\n  state: gathered")
        self.assertIn("the module's service does not answer", results[0]["msg"])

    def test_calls(self):
        call = "zr_nexa.router.call:\n  profile: profile-1\n  wait: 20\n  state: %s"
        results, run = self.tasks(call % "connected", call % "connected", call % "disconnected",
                                  "zr_nexa.router.call:\n  profile: 7")
        self.assertEqual([result.get("changed") for result in results[:3]], [True, False, True], run.text)
        self.assertEqual(results[0]["calls"], {"ipv4": "connected", "ipv6": "connected"})
        self.assertEqual(results[3]["msg"], "there is no profile 7 on this module")

    def test_a_call_that_does_not_come_about(self):
        environment = dict(os.environ, **self.fleet.module(0).environment)
        subprocess.run([PROGRAM.parent / "mobile_ap_ctl", "call", "slow", "1", "60000"], env=environment, check=True)
        results, run = self.tasks("zr_nexa.router.call:\n  profile: 1\n  wait: 1")
        self.assertIn("it did not come about in time", results[0]["msg"], run.text)

    def test_a_restore_that_is_refused(self):
        self.fleet.module(0).environment["MOBILE_AP_FAULTS"] = "RestoreFactoryConfig=fail:3"
        results, run = self.tasks("zr_nexa.router.restore:")
        self.assertIn("a change was refused, and all is as before", results[0]["msg"], run.text)
        self.assertFalse(results[0]["changed"])

    def test_calls_in_check_mode_change_nothing(self):
        results, run = self.tasks("zr_nexa.router.call:\n  profile: 1", words=["--check"])
        self.assertTrue(results[0]["changed"], run.text)
        self.assertEqual(self.fleet.module(0).changing_calls(), [])

    def test_facts_and_restore(self):
        change = "zr_nexa.router.config:\n  config: {version: 1, upnp: {notify_seconds: 600}}"
        facts = "zr_nexa.router.facts:"
        results, run = self.tasks(change, facts, "zr_nexa.router.restore:", facts)
        before = results[1]["ansible_facts"]["zr_nexa"]
        self.assertEqual(before["config"]["upnp"]["notify_seconds"], 600, run.text)
        self.assertEqual(before["status"]["profiles"][0]["handle"], 1)
        self.assertEqual(results[3]["ansible_facts"]["zr_nexa"]["config"]["upnp"]["notify_seconds"], 1800)

    def test_restore_in_check_mode_changes_nothing(self):
        results, _run = self.tasks("zr_nexa.router.restore:", words=["--check"])
        self.assertTrue(results[0]["changed"])
        self.assertEqual(self.fleet.module(0).changing_calls(), [])


if __name__ == "__main__":
    unittest.main()
