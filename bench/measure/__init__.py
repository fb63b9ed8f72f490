"""What tools/bench measures with, a file for each thing that is measured."""
