"""Settings files of other owners. Needs a unit that knows more than one (see sim/unit)."""

import os

from save_calls import leftovers
from unit import CGI, SAVES, Request, names, reset, settings, settings_files, write

OTHER = 7, 8  # user and group
WITHOUT_RIGHTS = ("/usr/bin/setpriv", "--bounding-set=-all", "--inh-caps=-all")


def stage_owners(options):
    """settings of another owner keep him, whether the writer may give files away or not; a new file
    that another has left is no obstacle"""
    del options
    wrong, runs = [], 0
    for query in SAVES:
        reset()
        peace = Request(query).run()
        after = settings()
        reset()
        whole = names()
        new_files = leftovers(query)
        for tracer in ((), WITHOUT_RIGHTS):
            for stale in (False, True):
                reset()
                for path in settings_files():
                    os.chown(path, *OTHER)
                    os.chmod(path, 0o646)
                for path in new_files if stale else ():
                    write(path, "left by another" * 2000)
                    os.chown(path, *OTHER)
                    os.chmod(path, 0o600)
                outcome = Request(query).run(*tracer)
                runs += 1
                states = {(state.st_uid, state.st_gid, state.st_mode & 0o7777)
                          for state in map(os.stat, settings_files())}
                if (outcome.reply, settings(), states, names()) != (
                        peace.reply, after, {(*OTHER, 0o646)}, whole):
                    wrong.append(f"{query}, {tracer[:1]}, stale {stale}: {outcome.reply!r}, "
                                 f"{states}, left behind {names() - whole}, "
                                 f"{'new' if settings() == after else 'other'} texts")
    print(f"  {runs} saves of files of another owner by {CGI}: {len(wrong)} wrong")
    return wrong
