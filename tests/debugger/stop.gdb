# Runs the fixture to the point where every container is built.
break fixture_ready
run
up-silently
