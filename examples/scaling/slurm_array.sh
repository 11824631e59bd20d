#!/bin/bash
#SBATCH --job-name=meta-analysis
#SBATCH --array=1-22
#SBATCH --ntasks=1
#SBATCH --cpus-per-task=2
#SBATCH --output=pooled_by_slurm/chr%a.log
# Pools a chromosome in each task of the array: chromosomes/chr1.tsv to chr22.tsv of the folder where sbatch runs.
# A task that fails is sent again alone: sbatch --array=7 slurm_array.sh
set -euo pipefail

name=chr$SLURM_ARRAY_TASK_ID.tsv
meta-analysis batch "chromosomes/$name" --key SNP --effect-size BETA --std-error SE \
    --tau2 reml --knapp-hartung adjusted --threads "$SLURM_CPUS_PER_TASK" \
    --output "pooled_by_slurm/$name" --rejects "pooled_by_slurm/$name.rejects"
